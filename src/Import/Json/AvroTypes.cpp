#include "Import/Json/AvroTypes.h"

#include "Import/Json/JsonKind.h"
#include "Import/Json/JsonMessage.h"

#include <algorithm>
#include <utility>

// A value is a list of alternatives, because any schema may be a union, and its members may be names and arrays of
// further unions. sortByKind() splits the list by kind; several records become one with the fields of all, as for the
// alternatives of other languages. The fields of records are read later, so that records may contain each other.
namespace {

using Index = JsonNode::Index;

constexpr std::size_t kMaxSteps = 20'000'000; // see spendStep()

} // namespace

// Returns a member of a schema, field or protocol, `none` allows any kind; 0 and a loss if it is of another kind, or
// missing though it must be there.
JsonNode::Index AvroTypes::find(Index holder, JsonWord key, JsonNode::Kind kind, bool isOptional)
{
    const Index found = tree.find(holder, key);
    if (found != 0 && (kind == JsonNode::none || tree.is(found, kind)))
        return found;
    const CString name(tree.names[static_cast<NameTable::Id>(key)]);
    if (!isOptional)
        documents.note(SourceReport::malformedDeclaration, holder, "no " + name);
    else if (found != 0)
        documents.note(SourceReport::invalidValue, found, name);
    return 0;
}

// Any JSON could be an Avro schema with an unknown type, so at least one known type is required.
bool AvroTypes::isSource(Index document)
{
    if (tree.find(document, JsonWord::protocol) != 0)
        return true;
    const std::vector<Scoped> leaves = sortByKind({{document, 0}}).leaves;
    return leaves.empty() || std::ranges::any_of(leaves, [this](const Scoped& leaf) { return isKnown(leaf.schema); });
}

void AvroTypes::addCandidate(Index schema, std::string_view name)
{
    declareAll({schema, 0});
    // A union with named types declares these. Any other schema is that of one value.
    const bool isSeveral = tree.is(schema, JsonNode::array) && !order.empty();
    for (const Index at : tree.childrenOf(isSeveral ? schema : 0)) {
        const Sorted sorted = sortByKind({{at, 0}});
        if (sorted.records.empty() && sorted.leaves.empty())
            continue;
        const auto shape = shapeOf({{at, 0}}, name, SourceTypes::kNone); // which reports a name that nothing declares
        if (shape && !sorted.records.empty())
            names.addCandidate(*shape, name, tree[at].place);
    }
    if (!isSeveral)
        if (const auto shape = shapeOf({{schema, 0}}, name, SourceTypes::kNone))
            names.addCandidate(*shape, name, tree[schema].place);
    // Named types that nothing refers to are imported as well.
    readDeclared(name);
}

// Reads the named types that were declared since the last call.
void AvroTypes::readDeclared(std::string_view name)
{
    for (const Scoped at : std::exchange(order, {}))
        shapeOf({at}, name, SourceTypes::kNone);
}

void AvroTypes::addNamedTypes()
{
    // Sorted into the order of the documents, because the table of names is unordered.
    std::vector<Scoped> all;
    for (const auto& [name, type] : named)
        if (names.isWanted(type.schema))
            all.push_back(type);
    std::ranges::sort(all, {}, &Scoped::schema);
    std::unordered_map<SourceTypes::Index, std::string_view> uris; // by record
    for (const Scoped& at : all) {
        const std::string_view uri = types.keep(tree.names[at.space]);
        const std::string_view name = simpleNameOf(at.schema);
        const auto shape = shapeOf({at}, name, SourceTypes::kNone);
        if (!shape)
            continue;
        names.addCandidate(*shape, name, tree[at.schema].place, uri);
        if (shape->type.kind == SourceTypes::kindRecord)
            uris.emplace(shape->type.index, uri);
    }
    // Some records are candidates already.
    for (SourceTypes::Candidate& candidate : types.candidates)
        if (const auto uri = uris.find(candidate.type.index);
            candidate.type.kind == SourceTypes::kindRecord && uri != uris.end())
            candidate.uri = uri->second;
}

// A protocol without messages only declares types.
void AvroTypes::readProtocol(Index protocol)
{
    const Index space = tree.find(protocol, JsonWord::namespaceWord, JsonNode::string);
    readDeclared({});
    const Index messages = find(protocol, JsonWord::messages, JsonNode::object, true);
    for (const Index at : tree.childrenOf(messages))
        readMessage(at, tree[space].text);
    if (tree[messages].firstChild == 0)
        for (const auto& [schemas, type] : records)
            if (schemas.size() == 1)
                names.addCandidate({type, 0}, {}, tree[schemas.front()].place);
}

// A request is a list of parameters, which becomes a record. A response is a schema, and becomes a candidate only if it
// is a record, because a single value is no message. Errors are types that are declared elsewhere, or in the list.
void AvroTypes::readMessage(Index member, NameTable::Id space)
{
    const Index message = tree.target(member);
    const CString name(tree.key(member));
    const Index request = tree.find(message, JsonWord::request, JsonNode::array);
    if (request == 0 && names.isWanted(message))
        documents.note(SourceReport::malformedDeclaration, message, "no request");
    if (tree.find(message, "one-way") == 0 && names.isWanted(message))
        find(message, JsonWord::response);
    if (tree[request].firstChild != 0 && names.isWanted(request)) {
        const SourceTypes::Type type =
            recordOf({{request, space}}, names.toModelName(name + "Request", member), SourceTypes::kNone);
        names.addCandidate({type, 0}, {}, tree[request].place);
    }
    if (const Index response = tree.find(message, JsonWord::response); names.isWanted(response)) {
        const Sorted sorted = sortByKind({{response, space}});
        checkNames(sorted.leaves);
        if (!sorted.records.empty()) {
            const std::string_view called = names.toModelName(name + "Response", member);
            names.addCandidate(*shapeOf({{response, space}}, called, SourceTypes::kNone), {}, tree[response].place);
        }
    }
    if (const Index errors = find(message, JsonWord::errors, JsonNode::array, true); names.isWanted(errors))
        checkNames(sortByKind({{errors, space}}).leaves);
}

// Returns the type of a value with these alternatives; nothing if it holds bytes only, which have no type.
std::optional<JsonTypes::Shape> AvroTypes::shapeOf(std::vector<Scoped> alternatives, std::string_view name,
                                                   SourceTypes::Index home)
{
    const Index place = alternatives.empty() ? 0 : alternatives.front().schema;
    if (home == SourceTypes::kNone && !names.isWanted(place))
        return std::nullopt;
    Shape shape;
    for (;;) {
        const Sorted sorted = sortByKind(std::move(alternatives));
        const bool isObject = !sorted.records.empty() || !sorted.maps.empty();
        const int sorts =
            !sorted.records.empty() + !sorted.maps.empty() + !sorted.arrays.empty() + !sorted.leaves.empty();
        if (sorts > 1)
            documents.note(SourceReport::kindsDiffer, place);
        if (sorts == 0 && !sorted.hasNull)
            documents.note(SourceReport::malformedDeclaration, place, "no type");
        report.count(SourceReport::nillable, sorts > 0 && sorted.hasNull);
        report.count(SourceReport::alternatives, sorted.records.size() > 1);
        if (isObject) {
            shape.type = recordOf(sorted.records.empty() ? sorted.maps : sorted.records, name, home);
            shape.depth += sorted.records.empty() ? 1 : 0;
            return shape;
        }
        if (sorts > 1)
            return shape;
        if (sorted.arrays.empty()) {
            const auto leaf = leafOf(sorted.leaves, name);
            if (!leaf)
                return std::nullopt;
            shape.type = *leaf;
            return shape;
        }
        if (++shape.depth > JsonTypes::kMaxDepth) {
            documents.note(SourceReport::cutShort, place, "arrays inside each other");
            return Shape();
        }
        alternatives.clear();
        for (const Scoped& array : sorted.arrays)
            alternatives.push_back({find(array.schema, JsonWord::items), array.space});
    }
}

// Splits unions, follows names and leaves out null. Each schema comes once.
AvroTypes::Sorted AvroTypes::sortByKind(std::vector<Scoped> alternatives)
{
    Sorted sorted;
    std::unordered_set<Index> met;
    // The list is used as a stack, so it is reversed to keep the order of the alternatives.
    std::ranges::reverse(alternatives);
    while (!alternatives.empty()) {
        spendStep();
        Scoped at = alternatives.back();
        alternatives.pop_back();
        at.schema = tree.target(at.schema);
        if (const auto known = declared.find(at.schema); known != declared.end() && known->second.schema != 0)
            at = known->second;
        if (!met.insert(at.schema).second)
            continue;
        // A "type" may hold a whole schema, which is then the schema of the value.
        const Index inner = tree.find(at.schema, JsonWord::type);
        if (tree.is(at.schema, JsonNode::array)) {
            const auto first = static_cast<std::ptrdiff_t>(alternatives.size());
            for (const Index member : tree.childrenOf(at.schema))
                alternatives.push_back({member, at.space});
            std::reverse(alternatives.begin() + first, alternatives.end());
        } else if (tree.is(inner, JsonNode::object) || tree.is(inner, JsonNode::array)) {
            alternatives.push_back({inner, at.space});
        } else {
            const std::string_view type = typeOf(at.schema);
            if (const Scoped* const target = declarationOf(type, at.space)) {
                documents.link(at.schema, target->schema);
                alternatives.push_back(*target);
            } else if (type == "null") {
                sorted.hasNull = true;
            } else {
                std::vector<Scoped>& alike = isOneOf(type, {"record", "error"}) ? sorted.records
                                             : type == "map"                    ? sorted.maps
                                             : type == "array"                  ? sorted.arrays
                                                                                : sorted.leaves;
                alike.push_back(at);
            }
        }
    }
    return sorted;
}

// Bounds the work: unions that many fields or messages share are split again for each.
void AvroTypes::spendStep()
{
    cancelPoint.pass();
    if (++steps > kMaxSteps)
        types.refuse(std::to_string(kMaxSteps) + " parts of types");
}

// Returns the name of a named type without its namespace; empty if the schema has no name.
std::string_view AvroTypes::simpleNameOf(Index schema)
{
    const std::string_view full = tree.textOf(schema, JsonWord::name);
    return full.empty() ? full : names.toModelName(full.substr(full.rfind('.') + 1), schema);
}

// Returns the record of these schemas: that of the only schema, else one with the fields of all.
SourceTypes::Type AvroTypes::recordOf(const std::vector<Scoped>& schemas, std::string_view name,
                                      SourceTypes::Index home)
{
    std::vector<Index> key;
    for (const Scoped& schema : schemas)
        key.push_back(schema.schema);
    std::ranges::sort(key);
    const auto [known, isNew] = records.try_emplace(std::move(key));
    if (!isNew)
        return known->second;
    const Index schema = schemas.front().schema;
    const std::string_view own = schemas.size() == 1 && typeOf(schema) != "map" ? simpleNameOf(schema) : "";
    // A named type is in its own namespace, any other one in that of the record that uses it.
    SourceTypes::Record row{.name = own.empty() ? name : own,
                            .description = describe(schema),
                            .place = tree[schema].place,
                            .isNamed = !own.empty()};
    if (!own.empty())
        row.space = modelSpaceOf(schemas.front().space);
    else if (row.home = home; home != SourceTypes::kNone)
        row.space = types.records[home].space;
    report.count(SourceReport::facet, !own.empty() && tree.find(schema, JsonWord::aliases) != 0);
    const SourceTypes::Index record = types.addRecord(row);
    pending.push_back({schemas, record});
    return known->second = {SourceTypes::kindRecord, record};
}

// Returns the number that the types have for a namespace. Kept, because many records may be in one with a long name.
SourceTypes::Index AvroTypes::modelSpaceOf(NameTable::Id space)
{
    const auto [known, isNew] = spaces.try_emplace(space);
    if (isNew)
        known->second = types.spaceOf(tree.names[space]);
    return known->second;
}

// Returns the kind of a schema that is neither an object nor an array; nothing for bytes.
std::optional<SourceTypes::Kind> AvroTypes::kindOf(Index schema) const
{
    const std::string_view type = typeOf(schema);
    const std::string_view logical = tree.textOf(schema, JsonWord::logicalType);
    // Of any other type, a logical one is ignored (Avro 1.11.1, "Logical Types").
    const bool isTime =
        (type == "int" && logical == "date") || (isOneOf(type, {"int", "long"}) && logical.starts_with("time-"));
    const bool isTimestamp =
        type == "long" && (logical.starts_with("timestamp-") || logical.starts_with("local-timestamp-"));
    if (isTime || isTimestamp)
        return SourceTypes::kindTime;
    const bool isDecimal = isOneOf(type, {"bytes", "fixed"}) && (logical == "decimal" || logical == "big-decimal");
    if (isDecimal || isOneOf(type, {"int", "long", "float", "double"}))
        return SourceTypes::kindNumber;
    if (type == "bytes")
        return std::nullopt;
    return type == "enum" ? SourceTypes::kindEnumeration : SourceTypes::kindText;
}

// Returns the type of a union of leaves; nothing if it holds bytes only.
std::optional<SourceTypes::Type> AvroTypes::leafOf(const std::vector<Scoped>& leaves, std::string_view name)
{
    std::set<SourceTypes::Kind> kinds;
    bool isBytes = false;
    checkNames(leaves);
    for (const Scoped& leaf : leaves) {
        report.count(SourceReport::facet, tree.hasAny(leaf.schema, {JsonWord::precision, JsonWord::size}));
        if (const auto kind = kindOf(leaf.schema))
            kinds.insert(*kind);
        else
            isBytes = true;
    }
    if (isBytes && kinds.empty())
        return std::nullopt;
    // Different kinds become text. Only lost numbers or bytes are worth a report.
    if (isBytes || (kinds.size() > 1 && kinds.contains(SourceTypes::kindNumber)))
        documents.note(SourceReport::kindsDiffer, leaves.front().schema);
    if (isBytes || kinds.size() != 1)
        return SourceTypes::Type();
    const SourceTypes::Kind kind = *kinds.begin();
    return kind == SourceTypes::kindEnumeration ? enumerationOf(leaves, name) : SourceTypes::Type{kind};
}

// Returns the union of one or several enumerations: their symbols in order, each once. A symbol that one of them lists
// twice is a loss; one that two of them list is not.
SourceTypes::Type AvroTypes::enumerationOf(const std::vector<Scoped>& leaves, std::string_view name)
{
    const Index schema = leaves.front().schema;
    const std::string_view own = leaves.size() == 1 ? simpleNameOf(schema) : "";
    // Many fields may have a named type.
    if (const auto known = enumerations.find(schema); known != enumerations.end() && !own.empty())
        return known->second;
    std::vector<SourceTypes::Constant> constants;
    std::unordered_map<NameTable::Id, const Scoped*> met; // by symbol the last enumeration that lists it
    for (const Scoped& leaf : leaves)
        for (const Index at : tree.childrenOf(find(leaf.schema, JsonWord::symbols, JsonNode::array))) {
            spendStep();
            if (!tree.is(at, JsonNode::string)) {
                documents.note(SourceReport::invalidValue, at, tree.text(at));
                continue;
            }
            const auto [known, isNew] = met.try_emplace(tree[at].text, &leaf);
            if (isNew)
                constants.push_back({types.keep(tree.text(at))});
            else if (std::exchange(known->second, &leaf) == &leaf)
                documents.note(SourceReport::declaredTwice, at, tree.text(at));
        }
    // An enumeration without symbols can't be declared, so it becomes text.
    if (constants.empty()) {
        documents.note(SourceReport::malformedDeclaration, schema, "no symbols");
        return {};
    }
    report.count(SourceReport::facet, !own.empty() && tree.find(schema, JsonWord::aliases) != 0);
    report.count(SourceReport::defaultValue, !own.empty() && tree.find(schema, JsonWord::defaultWord) != 0);
    const SourceTypes::Type made{SourceTypes::kindEnumeration,
                                 types.addEnumeration({own.empty() ? name : own, describe(schema), !own.empty(),
                                                       tree[schema].place, modelSpaceOf(leaves.front().space)},
                                                      constants)};
    if (!own.empty())
        enumerations.emplace(schema, made);
    return made;
}

void AvroTypes::finish()
{
    readDeclared({});
    for (std::size_t i = 0; i < pending.size(); ++i)
        // Copied, because reading fields appends further records.
        readFields(Pending(pending[i]));
}

// Reads the fields of a record. A field that several schemas declare gets the alternatives of all.
void AvroTypes::readFields(const Pending& record)
{
    struct Known
    {
        std::string_view name;
        std::string_view description;
        std::vector<Scoped> alternatives;
        Index declaredBy = 0; // the last schema that declares the field
    };
    std::vector<Known> known;
    std::unordered_map<std::string_view, std::size_t> byName;
    std::vector<SourceTypes::Field> fields;
    if (typeOf(record.schemas.front().schema) == "map") {
        fields.push_back({"key"});
        known.push_back({"value", {}, {}});
        for (const Scoped& map : record.schemas)
            known.back().alternatives.push_back({find(map.schema, JsonWord::values), map.space});
    } else {
        for (const Scoped& schema : record.schemas) {
            const bool isList = tree.is(schema.schema, JsonNode::array);
            const Index list = isList ? schema.schema : find(schema.schema, JsonWord::fields, JsonNode::array);
            for (const Index at : tree.childrenOf(list)) {
                spendStep();
                const Index field = tree.target(at);
                report.count(SourceReport::defaultValue, tree.find(field, JsonWord::defaultWord) != 0);
                report.count(SourceReport::facet,
                             (tree.find(field, JsonWord::order) != 0) + (tree.find(field, JsonWord::aliases) != 0));
                const std::string_view name = tree.text(find(field, JsonWord::name, JsonNode::string));
                const auto [place, isNew] = byName.try_emplace(name, known.size());
                if (isNew)
                    known.push_back({names.toModelName(name, field), describe(field), {}});
                Known& declared = known[place->second];
                if (std::exchange(declared.declaredBy, schema.schema) == schema.schema && !name.empty())
                    documents.note(SourceReport::declaredTwice, field, name);
                declared.alternatives.push_back({find(field, JsonWord::type), schema.space});
            }
        }
    }
    for (Known& field : known) {
        const Index place = field.alternatives.front().schema;
        const auto shape = shapeOf(std::move(field.alternatives), field.name, record.record);
        if (shape)
            fields.push_back({field.name, field.description, shape->type, SourceTypes::roleElement, shape->depth});
        else
            documents.note(SourceReport::bytesSkipped, place, field.name);
    }
    types.setFields(record.record, fields);
}

void readAvro(JsonSources& sources)
{
    JsonDocuments& documents = sources.documents;
    AvroTypes avro(documents, sources.schemas, sources.types, sources.report);
    // All documents are declared before one is read, because they may use each other's types.
    for (const Index root : sources.roots)
        avro.declareAll(root);
    for (Index source = 0; source < sources.roots.size(); ++source) {
        sources.schemas.setSource(source);
        const Index root = sources.roots[source];
        if (root == 0) // the same file again
            continue;
        if (!avro.isSource(root))
            documents.refuse(root, "it is neither a schema nor a protocol of Avro");
        if (documents.tree.find(root, JsonWord::protocol) != 0)
            avro.readProtocol(root);
        else
            avro.addCandidate(root, sources.schemas.toModelName(toXmlName(documents.nameOf(root)), root));
    }
    // The requested root may be any of the types.
    if (sources.areRequested)
        avro.addNamedTypes();
    avro.finish();
}
