// AvroTypes: the declarations of named types.
#include "Import/Json/AvroTypes.h"
#include "Import/Json/JsonKind.h"

#include <algorithm>
#include <utility>

using Index = JsonNode::Index;

// Returns the full name of a type (Avro 1.11.1, "Names"): a name with dots holds its namespace, any other one is in
// `space`. The parts are not joined to a text, because many types may be in a namespace with a long name.
AvroTypes::FullName AvroTypes::fullNameOf(std::string_view name, NameTable::Id space)
{
    if (const std::size_t dot = name.rfind('.'); dot != name.npos) {
        space = tree.names.intern(name.substr(0, dot));
        name.remove_prefix(dot + 1);
    }
    return joined(space, tree.names.intern(name));
}

// Returns the declaration of a named type, or null. A simple name is in the enclosing namespace. If it is not declared
// there, it is looked up without a namespace.
const AvroTypes::Scoped* AvroTypes::declarationOf(std::string_view type, NameTable::Id space)
{
    if (isAvroType(type))
        return nullptr;
    auto found = named.find(fullNameOf(type, space));
    if (found == named.end())
        found = named.find(fullNameOf(type, 0));
    return found == named.end() ? nullptr : &found->second;
}

// Returns the name of a schema's type: the schema itself, or its "type". Empty if that is not a name.
std::string_view AvroTypes::typeOf(Index schema) const
{
    return tree.text(tree.is(schema, JsonNode::string) ? schema : tree.find(schema, JsonWord::type));
}

// Returns whether Avro defines the type of a leaf.
bool AvroTypes::isKnown(Index leaf) const
{
    const std::string_view type = typeOf(leaf);
    return isOneOf(type, {"int", "long", "float", "double", "bytes", "string", "boolean", "null"}) ||
           (tree.is(leaf, JsonNode::object) && isAvroType(type));
}

// Reports leaves whose types are names that nothing declares.
void AvroTypes::checkNames(const std::vector<Scoped>& leaves)
{
    for (const Scoped& leaf : leaves) {
        const bool isObject = tree.is(leaf.schema, JsonNode::object);
        const Index said = isObject ? find(leaf.schema, JsonWord::type) : leaf.schema;
        if (said != 0 && !isKnown(leaf.schema))
            documents.note(SourceReport::unresolvedReference, said, tree.text(said));
    }
}

void AvroTypes::declareAll(Index document)
{
    if (tree.find(document, JsonWord::protocol) == 0)
        return declareAll({document, 0});
    const NameTable::Id space = tree[tree.find(document, JsonWord::namespaceWord, JsonNode::string)].text;
    declareAll({find(document, JsonWord::types, JsonNode::array, true), space});
    // Messages may declare types, too.
    for (const Index message : tree.childrenOf(document, JsonWord::messages, JsonNode::object)) {
        for (const Index at : tree.childrenOf(message, JsonWord::request, JsonNode::array))
            declareAll({tree.find(at, JsonWord::type), space});
        for (const JsonWord word : {JsonWord::response, JsonWord::errors})
            declareAll({tree.find(message, word), space});
    }
}

// Visits each schema once, with a stack instead of recursion, because schemas may nest deeply.
void AvroTypes::declareAll(Scoped top)
{
    std::vector<Scoped> waiting{top};
    while (!waiting.empty()) {
        Scoped at = waiting.back();
        waiting.pop_back();
        at.schema = tree.target(at.schema);
        if (!tree.is(at.schema, JsonNode::object) && !tree.is(at.schema, JsonNode::array))
            continue;
        if (!declared.try_emplace(at.schema).second)
            continue;
        const auto first = static_cast<std::ptrdiff_t>(waiting.size());
        const auto wait = [&](Index holder, bool isField) {
            for (const Index child : tree.childrenOf(holder))
                waiting.push_back({isField ? tree.find(child, JsonWord::type) : child, at.space});
        };
        if (tree.is(at.schema, JsonNode::array)) {
            std::unordered_set<NameTable::Id> members;
            for (const Index member : tree.childrenOf(at.schema))
                if (tree.is(member, JsonNode::string) && !members.insert(tree[member].text).second)
                    documents.note(SourceReport::declaredTwice, member, tree.text(member));
            wait(at.schema, false);
        } else if (declare(at)) {
            for (const JsonWord word : {JsonWord::type, JsonWord::items, JsonWord::values})
                waiting.push_back({tree.find(at.schema, word), at.space});
            wait(tree.find(at.schema, JsonWord::fields, JsonNode::array), true);
        }
        // The stack is filled in reverse, so that types are declared in the order of the document.
        std::reverse(waiting.begin() + first, waiting.end());
    }
}

// Returns the namespace of a named type.
NameTable::Id AvroTypes::spaceOf(Scoped at)
{
    const std::string_view name = tree.textOf(at.schema, JsonWord::name);
    if (const std::size_t dot = name.rfind('.'); dot != name.npos)
        return tree.names.intern(CString(name.substr(0, dot)));
    const Index own = tree.find(at.schema, JsonWord::namespaceWord, JsonNode::string);
    return own == 0 ? at.space : tree[own].text;
}

// Declares a schema if it is a named type. Returns false if it repeats an earlier one, which is then used instead. Avro
// forbids a second declaration, but some generators embed the types that several files share in each of them.
bool AvroTypes::declare(Scoped& at)
{
    const std::string_view name = tree.textOf(at.schema, JsonWord::name);
    const std::string_view type = tree.textOf(at.schema, JsonWord::type);
    if (!isAvroType(type))
        return true;
    const Index size = type == "fixed" ? find(at.schema, JsonWord::size, JsonNode::number) : 0;
    if (tree.text(size).find_first_not_of("0123456789") != CString::npos)
        documents.note(SourceReport::invalidValue, size, tree.text(size));
    if (find(at.schema, JsonWord::name, JsonNode::string) == 0 || name.empty())
        return true;
    at.space = spaceOf(at);
    const auto [known, isNew] = named.emplace(fullNameOf(name, at.space), at);
    if (!isNew && isSame(known->second, at)) {
        declared[at.schema] = known->second;
        return false;
    }
    if (!isNew)
        documents.note(SourceReport::declaredTwice, at.schema, name);
    declared[at.schema] = at;
    order.push_back(at);
    return true;
}

// Returns whether two schemas describe the same values. A name and a declaration of that name count as equal, because
// one file may refer to a type that another one embeds.
bool AvroTypes::isSame(Scoped one, Scoped other)
{
    constexpr JsonWord members[] = {JsonWord::type,    JsonWord::name,   JsonWord::fields,     JsonWord::items,
                                    JsonWord::symbols, JsonWord::values, JsonWord::logicalType};
    const auto isNamed = [&](Index schema) { return isAvroType(tree.textOf(schema, JsonWord::type)); };
    const auto nameOf = [&](Scoped at) {
        const bool isName = tree.is(at.schema, JsonNode::string);
        return isName ? fullNameOf(tree.text(at.schema), at.space)
                      : fullNameOf(tree.textOf(at.schema, JsonWord::name), spaceOf(at));
    };
    std::vector<std::pair<Scoped, Scoped>> waiting{{one, other}};
    while (!waiting.empty()) {
        spendStep();
        auto [a, b] = waiting.back();
        waiting.pop_back();
        a.schema = tree.target(a.schema);
        b.schema = tree.target(b.schema);
        const JsonNode::Kind kind = tree[a.schema].kind, otherKind = tree[b.schema].kind;
        if (isNamed(a.schema) || isNamed(b.schema) || (kind == JsonNode::string && otherKind == kind)) {
            if (nameOf(a) != nameOf(b))
                return false;
            if (kind == JsonNode::string || otherKind == JsonNode::string)
                continue;
            a.space = b.space = spaceOf(a);
        }
        if (kind != otherKind || tree[a.schema].text != tree[b.schema].text)
            return false;
        for (const JsonWord word : members)
            if (kind == JsonNode::object)
                waiting.push_back({{tree.find(a.schema, word), a.space}, {tree.find(b.schema, word), b.space}});
        Index first = kind == JsonNode::array ? tree[a.schema].firstChild : 0;
        Index second = kind == JsonNode::array ? tree[b.schema].firstChild : 0;
        for (; first != 0 && second != 0; first = tree[first].next, second = tree[second].next)
            waiting.push_back({{first, a.space}, {second, b.space}});
        if (first != second)
            return false;
    }
    return true;
}
