#include "Import/Schema/Full/SchemaContents.h"

#include <algorithm>
#include <bit>

// A type is worked out after its base, whose fields are copied and then extended. Its particles are walked in the order
// of the document, with groups replaced by their contents, and each element becomes a field at its first occurrence.
// ContentModel finds the fields that repeat.
//
// The cost is linear in the fields made and in the particles walked. Both can exceed the size of the source, because
// each extension has all fields of its bases, and each group can refer to another one twice. So both are bounded.

namespace {

// Up to this number, fields are searched linearly.
constexpr std::size_t kFewFields = 16;
constexpr std::size_t kMaxSteps = 20'000'000; // see spendStep()

// Returns whether an attribute of the XML namespace needs no declaration (https://www.w3.org/TR/xml/, /xmlbase/,
// /xml-id/).
bool isXmlAttribute(std::string_view local)
{
    return local == "lang" || local == "space" || local == "base" || local == "id";
}

} // namespace

void SchemaContents::Fields::clear()
{
    all.clear();
    many = {};
}

SchemaField* SchemaContents::Fields::find(SchemaName name)
{
    if (all.size() <= kFewFields) {
        const auto found = std::ranges::find(all, name, &SchemaField::name);
        return found == all.end() ? nullptr : &*found;
    }
    const std::uint32_t* const found = many.find(name.key());
    return found ? &all[*found] : nullptr;
}

SchemaField& SchemaContents::Fields::add(const SchemaField& field)
{
    all.push_back(field);
    const std::size_t first = all.size() <= kFewFields ? all.size() : all.size() == kFewFields + 1 ? 0 : all.size() - 1;
    for (std::size_t i = first; i < all.size(); ++i)
        many.insert(all[i].name.key(), static_cast<std::uint32_t>(i));
    return all.back();
}

SchemaContents::SchemaContents(SchemaSet& set) : set(set), tree(set.queryTree()), contents(tree), isEntered(tree.size())
{}

// Works out a chain of base types, the outermost base first, without recursion. Each new type is marked as in progress,
// so that a cycle ends at a type that counts as empty.
std::span<const SchemaField> SchemaContents::of(Index type)
{
    std::vector<Index> chain;
    Index base = type;
    while (base != 0 && contents.insert(base).second) {
        chain.push_back(base);
        base = baseOf(base);
    }
    if (std::ranges::find(chain, base) != chain.end()) // the chain is a cycle
        set.note(SourceReport::unresolvedContent, tree.derivationOf(chain.back()));
    for (; !chain.empty(); chain.pop_back()) {
        build(chain.back(), base);
        base = chain.back();
    }
    const Content& content = *contents.find(type);
    return std::span(kept).subspan(content.first, content.elements + content.attributes);
}

// Returns the complex type that a type is derived from; 0 if there is none.
SchemaContents::Index SchemaContents::baseOf(Index type)
{
    const Index derivation = tree.derivationOf(type);
    const SchemaName name = tree.referenceOf(derivation);
    if (name.local == 0)
        return 0;
    const Index base = set.reach(SchemaSet::type, name, derivation);
    if (base == 0 && !set.builtInKind(name))
        set.note(SourceReport::unresolvedContent, derivation, name.local);
    return tree[base].tag == SchemaTag::complexType ? base : 0;
}

// Works out one type, whose base is known (0 for none). Walks the derivation if there is one, else the type itself.
void SchemaContents::build(Index type, Index base)
{
    const Index derivation = tree.derivationOf(type);
    elements.clear();
    attributes.clear();
    model.clear();
    isRestriction = tree[derivation].tag == SchemaTag::restriction;
    // A restriction repeats the elements that it keeps, but only the attributes that it changes.
    if (base != 0)
        inherit(*contents.find(base), !isRestriction);
    inherited = attributes.all.size();
    walkParticles(derivation == 0 ? type : derivation);
    walkAttributes(derivation == 0 ? type : derivation, type);
    contents.insert(type).first = keep();
}

// Begins the current type with the fields of its base.
void SchemaContents::inherit(const Content& base, bool withElements)
{
    for (std::uint32_t i = 0; withElements && i < base.elements; ++i) {
        elements.add(kept[base.first + i]);
        model.add(i, elements.all[i].repeats);
    }
    for (std::size_t i = 0; i < base.attributes; ++i)
        attributes.add(kept[base.first + base.elements + i]);
}

// Appends the fields of the current type to `kept`, once all its elements are known.
SchemaContents::Content SchemaContents::keep()
{
    for (const auto& [element, repeats] : model.query())
        elements.all[element].repeats = repeats;
    const Content content{kept.size(), elements.all.size(), attributes.all.size()};
    // Checked here, too, because the fields of a chain of extensions are quadratic in its length.
    if (kept.size() + content.elements + content.attributes > SourceTypes::kMaxFields)
        set.refuse(std::to_string(SourceTypes::kMaxFields) + " fields");
    kept.insert(kept.end(), elements.all.begin(), elements.all.end());
    kept.insert(kept.end(), attributes.all.begin(), attributes.all.end());
    return content;
}

// Walks the content of a type depth first in document order, with a stack, because groups nest without bound.
void SchemaContents::walkParticles(Index holder)
{
    enter({tree[holder].firstChild}, ContentModel::sequence);
    while (!frames.empty()) {
        Frame& frame = frames.back();
        if (frame.next == 0) {
            isEntered[frame.group] = false; // node 0 if the frame is not a group
            model.endGroup(frame.repeats);
            frames.pop_back();
            continue;
        }
        const Index particle = frame.next;
        frame.next = tree[particle].next;
        visitParticle(particle);
    }
}

void SchemaContents::enter(const Frame& frame, ContentModel::Group kind)
{
    frames.push_back(frame);
    model.beginGroup(kind);
}

// Visits a particle. One that may not occur is left out with all its contents, and noted as a detail.
void SchemaContents::visitParticle(Index particle)
{
    const SchemaNode& node = tree[particle];
    spendStep();
    switch (node.tag) {
    case SchemaTag::sequence:
    case SchemaTag::all:
    case SchemaTag::choice:
    case SchemaTag::group:
    case SchemaTag::element:
        if (node.occurs == 0)
            return set.note(SourceReport::elementNotAllowed, particle);
        if (node.tag == SchemaTag::element)
            return addElement(particle);
        if (node.tag == SchemaTag::group)
            return enterGroup(particle);
        return enter({node.firstChild, 0, node.occurs > 1},
                     node.tag == SchemaTag::choice ? ContentModel::choice : ContentModel::sequence);
    case SchemaTag::any:
        return set.note(SourceReport::anyElement, particle);
    default:
        return;
    }
}

// Enters a group definition. A group inside itself is left out. A group that is referred to twice is walked twice,
// because its elements then repeat.
void SchemaContents::enterGroup(Index reference)
{
    if (!tree[reference].is(SchemaNode::isReference))
        return;
    const Index group = set.reach(SchemaSet::group, tree.referenceOf(reference), reference);
    if (group == 0)
        return set.note(SourceReport::unresolvedContent, reference);
    if (isEntered[group])
        return set.note(SourceReport::unresolvedContent, reference);
    isEntered[group] = true;
    enter({tree[group].firstChild, group, tree[reference].occurs > 1}, ContentModel::sequence);
}

// Returns the name of a local element or attribute. Its namespace follows from its `form`, else from the default of the
// document (XML Schema Part 1, 3.2.2 and 3.3.2).
SchemaName SchemaContents::localName(Index declaration, bool SchemaDocument::*isQualifiedByDefault) const
{
    const SchemaNode& node = tree[declaration];
    const SchemaDocument& document = tree.documentOf(declaration);
    const bool isQualified =
        node.is(SchemaNode::hasForm) ? node.is(SchemaNode::isQualified) : document.*isQualifiedByDefault;
    return {isQualified ? document.space : 0, node.name};
}

// Adds an element, or those that a reference refers to.
void SchemaContents::addElement(Index particle)
{
    const SchemaNode& node = tree[particle];
    const bool repeats = node.occurs > 1;
    if (!node.is(SchemaNode::isReference)) {
        if (node.hasName())
            addOccurrence(localName(particle, &SchemaDocument::elementsQualified), particle, repeats, 0);
        return;
    }
    const SchemaName name = tree.referenceOf(particle);
    const Index declaration = set.reach(SchemaSet::element, name, particle);
    if (declaration == 0) {
        set.note(SourceReport::unresolvedReference, particle);
        addOccurrence(name, 0, repeats, node.documentation);
    } else {
        addSubstitutes(name, declaration, repeats, node.documentation);
    }
}

// Adds the head of a substitution group and all its members, indirect ones included, except abstract ones (XML Schema
// Part 1, 3.3.6), unless the head blocks them. `final` is ignored. The documentation of the reference belongs to the
// head only.
void SchemaContents::addSubstitutes(SchemaName head, Index declaration, bool repeats, std::uint32_t documentation)
{
    const bool isAbstract = tree[declaration].is(SchemaNode::isAbstract);
    if (!isAbstract)
        addOccurrence(head, declaration, repeats, documentation);
    if (tree[declaration].is(SchemaNode::blocksSubstitution) || set.membersOf(declaration).empty()) {
        if (isAbstract) // and no element that was read may replace it
            set.note(SourceReport::elementNotAllowed, declaration);
        return;
    }
    std::vector<Index> heads{declaration};
    isEntered[declaration] = true;
    for (std::size_t i = 0; i < heads.size(); ++i)
        for (const Index member : set.membersOf(heads[i])) {
            spendStep();
            if (isEntered[member])
                continue;
            isEntered[member] = true;
            set.reach(member);
            heads.push_back(member);
            if (!tree[member].is(SchemaNode::isAbstract) && !isBlocked(declaration, member))
                addOccurrence(set.nameOf(member), member, repeats, 0);
        }
    for (const Index member : heads)
        isEntered[member] = false;
}

// Adds an occurrence of an element.
void SchemaContents::addOccurrence(SchemaName name, Index declaration, bool repeats, std::uint32_t documentation)
{
    SchemaField* field = elements.find(name);
    if (!field) {
        field = &elements.add({name, declaration, SourceTypes::roleElement, false, documentation});
        // Checked before keep(), because a single type can be too large.
        if (kept.size() + elements.all.size() > SourceTypes::kMaxFields)
            set.refuse(std::to_string(SourceTypes::kMaxFields) + " fields");
    } else if (!areEquivalent(field->declaration, declaration)) {
        set.note(SourceReport::mergedByName, declaration);
    }
    if (field->documentation == 0)
        field->documentation = documentation;
    model.add(static_cast<std::uint32_t>(elements.positionOf(*field)), repeats);
}

// Returns the declaration that gives a declaration its type: itself, or the nearest head of its substitution groups
// that has one (XML Schema Part 1, 3.3.2); 0 if none has. All elements of a chain of heads are cached, so that a long
// one is walked once. They are cached as without a type while they are walked, which ends a cycle.
SchemaContents::Index SchemaContents::typedBy(Index declaration)
{
    std::vector<Index> chain;
    Index at = declaration;
    while (at != 0 && tree[at].reference.local == 0 &&
           tree.childOf(at, SchemaTag::complexType, SchemaTag::simpleType) == 0) {
        const auto [known, isNew] = typedHeads.try_emplace(at, 0);
        if (!isNew) {
            at = known->second;
            break;
        }
        chain.push_back(at);
        const bool hasHead = tree[at].tag == SchemaTag::element && tree.firstListed(at).local != 0;
        at = hasHead ? set.reach(SchemaSet::element, tree.firstListed(at), at) : 0;
    }
    for (const Index untyped : chain)
        typedHeads[untyped] = at;
    return at;
}

// Returns the type that an element or a derivation names; 0 if it names none, or a built-in or unknown one.
SchemaContents::Index SchemaContents::typeNamedBy(Index at) const
{
    const SchemaName name = tree.referenceOf(at);
    return name.local == 0 || set.builtInKind(name) ? 0 : set.find(SchemaSet::type, name, at);
}

// Returns the type of an element; 0 if it is built-in or unknown.
SchemaContents::Index SchemaContents::typeOf(Index declaration)
{
    declaration = typedBy(declaration);
    return tree.referenceOf(declaration).local == 0
               ? tree.childOf(declaration, SchemaTag::complexType, SchemaTag::simpleType)
               : typeNamedBy(declaration);
}

// Returns whether the way in which the type of a member is derived from that of its head is blocked by the head, its
// type, or a type in between (XML Schema Part 1, 3.3.6). Types that are derived from each other are left at a type that
// was passed before (Brent's algorithm).
bool SchemaContents::isBlocked(Index head, Index member)
{
    if (!tree.blocksDerivation)
        return false;
    const Index top = typeOf(head);
    unsigned blocked = tree[head].flags | tree[top].flags, ways = 0;
    Index type = typeOf(member), passed = 0;
    for (unsigned count = 1; type != top && type != 0 && type != passed; ++count) {
        spendStep();
        if (std::has_single_bit(count))
            passed = type;
        ways |= tree.blockOf(type);
        const bool isComplex = tree[type].tag == SchemaTag::complexType;
        type = typeNamedBy(isComplex ? tree.derivationOf(type) : tree.childOf(type, SchemaTag::restriction));
        blocked |= tree[type].flags;
    }
    return (blocked & ways) != 0;
}

// Returns whether two declarations of one name have the same type, as far as that is known without reading the type.
bool SchemaContents::areEquivalent(Index one, Index other)
{
    if (one == 0 || other == 0)
        return true;
    one = typedBy(one);
    other = typedBy(other);
    if (one == other)
        return true;
    const auto holdsType = [this](Index at) {
        return tree.childOf(at, SchemaTag::complexType, SchemaTag::simpleType) != 0;
    };
    if (holdsType(one) || holdsType(other))
        return false;
    const SchemaName type = tree.referenceOf(one), otherType = tree.referenceOf(other);
    const auto kind = set.builtInKind(type);
    return type == otherType || (kind && kind == set.builtInKind(otherType));
}

// Walks the attributes of a type (XML Schema 1.1 Part 1, 3.4.2), with the default ones of its document. An attribute
// group that is referred to again adds nothing, because an attribute doesn't repeat.
void SchemaContents::walkAttributes(Index holder, Index type)
{
    std::vector<Index> groups;
    const auto enterAttributes = [&](SchemaName name, Index from) {
        spendStep();
        const Index group = set.reach(SchemaSet::attributeGroup, name, from);
        if (group == 0) {
            set.note(SourceReport::unresolvedContent, from, name.local);
        } else if (!isEntered[group]) {
            isEntered[group] = true;
            groups.push_back(group);
            waiting.push_back(tree[group].firstChild);
        }
    };
    waiting.clear();
    if (const SchemaName defaults = tree.defaultAttributesOf(type); defaults.local != 0)
        enterAttributes(defaults, tree.documentOf(type).root);
    waiting.push_back(tree[holder].firstChild);
    while (!waiting.empty()) {
        const Index at =
            tree.firstOf(waiting.back(), SchemaTag::attribute, SchemaTag::attributeGroup, SchemaTag::anyAttribute);
        if (at == 0) {
            waiting.pop_back();
            continue;
        }
        waiting.back() = tree[at].next;
        if (tree[at].tag == SchemaTag::anyAttribute) {
            set.note(SourceReport::anyAttribute, at);
        } else if (tree[at].tag == SchemaTag::attribute) {
            visitAttribute(at);
        } else if (tree[at].is(SchemaNode::isReference)) {
            enterAttributes(tree.referenceOf(at), at);
        }
    }
    for (const Index group : groups)
        isEntered[group] = false;
    // Prohibited attributes have lost their names.
    std::erase_if(attributes.all, [](const SchemaField& field) { return field.name.local == 0; });
}

// A prohibited attribute removes an inherited one, so it has an effect in a restriction only (XML Schema Part 1,
// 3.4.2).
void SchemaContents::visitAttribute(Index attribute)
{
    const SchemaNode& node = tree[attribute];
    const bool isProhibited = node.is(SchemaNode::isProhibited) || node.occurs == 0; // maxOccurs of 0 in the drafts
    if (isProhibited && !isRestriction)                                              // without an effect there
        return;
    if (!node.is(SchemaNode::isReference)) {
        if (node.hasName())
            addAttribute(localName(attribute, &SchemaDocument::attributesQualified), attribute, isProhibited, 0);
        return;
    }
    const SchemaName name = tree.referenceOf(attribute);
    const Index declaration = set.reach(SchemaSet::attribute, name, attribute);
    const bool isOfXml = name.space == SchemaTree::kXmlNamespace && isXmlAttribute(tree.text(name.local));
    if (declaration == 0 && !isOfXml)
        set.note(SourceReport::unresolvedReference, attribute);
    addAttribute(name, declaration, isProhibited, node.documentation);
}

// Adds an attribute. It replaces an inherited one of the same name, whose type a restriction may change. A prohibited
// one only loses its name here, because removing it would move the others.
void SchemaContents::addAttribute(SchemaName name, Index declaration, bool isProhibited, std::uint32_t documentation)
{
    SchemaField* field = attributes.find(name);
    const bool mayDiffer = field && isRestriction && attributes.positionOf(*field) < inherited;
    if (field && !mayDiffer && !areEquivalent(field->declaration, declaration))
        set.note(SourceReport::mergedByName, declaration);
    if (field)
        *field = {isProhibited ? SchemaName() : name, declaration, SourceTypes::roleAttribute, false, documentation};
    else if (!isProhibited)
        attributes.add({name, declaration, SourceTypes::roleAttribute, false, documentation});
}

void SchemaContents::spendStep()
{
    if (++steps > kMaxSteps)
        set.refuse(std::to_string(kMaxSteps) + " steps through groups, substitution groups and derived types");
}
