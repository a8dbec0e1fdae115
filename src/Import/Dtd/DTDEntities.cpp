#include "Import/Dtd/DTDEntities.h"

#include "Base/Encoding.h"
#include "Files/File.h"
#include "Files/FileMessage.h"
#include "Import/Dtd/DTDText.h"

#include <algorithm>
#include <charconv>
#include <system_error>

// A value without references is a view of the DTD. One with references is composed when it is declared, as XML requires
// (XML 1.0, 4.5): references to entities declared before it are replaced. References to modules stay in values, so a
// file is opened only if its entity is used.
//
// Both bounds hold for composing and for reading: the depth of an entity is added to that of the reference that opens
// it, and a composed value is charged when it is made and whenever it is read.
namespace {

constexpr std::size_t kMaxDepth = 40;             // levels of nested entities
constexpr std::size_t kMaxGrowth = 100;           // times the bytes of the files; real DTDs expand to 12 times
constexpr std::size_t kSmallExpansion = 16 << 20; // bytes that are allowed for files of any size

// Removes a text declaration, which is not part of the entity's replacement text (XML 1.0, 4.3.1 and 4.5). The entity
// may be used inside a declaration, where an instruction may not be.
void skipTextDeclaration(DTDEntities::Text& text)
{
    if (!text.text.starts_with("<?xml"))
        return;
    const std::size_t end = text.text.find("?>");
    if (end == text.text.npos || kWhitespace.find(text.text[5]) == kWhitespace.npos)
        return;
    const std::string_view declaration = text.text.substr(0, end + 2);
    text.text.remove_prefix(declaration.size());
    text.start.line += static_cast<std::uint32_t>(std::ranges::count(declaration, '\n'));
    text.start.column = static_cast<std::uint32_t>(declaration.size() - (declaration.rfind('\n') + 1) + 1);
}

} // namespace

DTDEntities::Text& DTDEntities::addFile(const FoundFile& file, const CString& shownName, std::string_view bytes)
{
    CString room, wrongEncoding;
    std::string_view text = decodeText(bytes, room, wrongEncoding);
    // A converted text must live as long as the types, because names are views of it.
    if (text.data() == room.data() && !room.empty())
        text = types.adopt(std::move(room));
    read += text.size();
    Text& added = files.emplace_back(Text{text, {report.addFile(shownName), 1, 1}});
    if (!wrongEncoding.empty()) {
        const SourceReport::Component component = report.enter(0);
        report.add(SourceReport::invalidValue, added.start, "encoding=\"" + wrongEncoding + "\"");
        report.enter(component);
    }
    skipTextDeclaration(added);
    folders.emplace(added.start.file, folderOf(file.name));
    if (file.id != FileId())
        filesById.emplace(file.id, &added);
    return added;
}

// Adds an entity. Returns null if the name is declared already: the first declaration is binding (XML 1.0, 4.2). A
// repeated one counts as a use, because an entity that the caller gives is meant to replace the DTD's own.
DTDEntities::Entity* DTDEntities::add(std::string_view name, SourcePlace place)
{
    const std::size_t hash = keyHash(name);
    if (Entity* const known = entities.find(name, hash)) {
        known->isUsed = true;
        return nullptr;
    }
    Entity& entity = owned.emplace_back(Entity{name, {{}, place}, {}, {}});
    entities.store(&entity, hash);
    return &entity;
}

void DTDEntities::declare(std::string_view name, std::string_view value, SourcePlace place)
{
    Entity* entity = add(name, place);
    if (!entity)
        return;
    entity->text = &entity->value;
    if (value.find_first_of("%&") == std::string_view::npos)
        entity->value.text = value;
    else
        replaceReferences(*entity, value);
}

void DTDEntities::declareModule(std::string_view name, std::string_view publicId, std::string_view systemId,
                                SourcePlace place)
{
    if (Entity* entity = add(name, place)) {
        entity->isModule = true;
        entity->publicId = publicId;
        entity->systemId = systemId;
    }
}

// An entity's value replaces references by text alone (XML 1.0, 4.4.5), so part of a name can come from an entity.
void DTDEntities::replaceReferences(Entity& entity, std::string_view value)
{
    CString out;
    while (!value.empty()) {
        const std::size_t plain = std::min(value.find_first_of("%&"), value.size());
        out.append(value.substr(0, plain));
        value.remove_prefix(plain);
        if (!value.empty())
            value.remove_prefix(replaceOne(entity, value, out));
    }
    checkDepth(entity.depth);
    spend(out.size());
    entity.value.text = types.adopt(std::move(out));
    entity.value.isComposed = true;
}

// Replaces the reference at the start of `rest`, or copies one character of it; returns how many bytes that took. A
// reference to an unknown entity, to a module or to the entity itself stays as it is, and is resolved or reported where
// the value is read. A character reference that names no character is copied, too.
std::size_t DTDEntities::replaceOne(Entity& entity, std::string_view rest, CString& out)
{
    const std::string_view name = rest[0] == '%' ? dtdNameAt(rest.substr(1)) : std::string_view();
    const std::size_t end = name.size() + 1;
    if (Entity* known = name.empty() ? nullptr : entities.find(name); known && known != &entity && known->text) {
        known->isUsed = true;
        if (!known->isModule) {
            entity.depth = std::max(entity.depth, known->depth + 1);
            // Large values are charged while they grow; replaceReferences() charges the whole only at its end.
            if (out.size() > kSmallExpansion)
                spend(known->value.text.size());
            out.append(known->value.text);
            return end + (end < rest.size() && rest[end] == ';');
        }
    }
    if (rest.starts_with("&#")) {
        const bool isHex = rest.size() > 2 && (rest[2] == 'x' || rest[2] == 'X');
        const char* first = rest.data() + (isHex ? 3 : 2);
        std::uint32_t code = 0;
        const auto [behind, error] = std::from_chars(first, rest.data() + rest.size(), code, isHex ? 16 : 10);
        if (error == std::errc() && appendCharacter(out, code))
            return static_cast<std::size_t>(behind - rest.data()) +
                   (behind < rest.data() + rest.size() && *behind == ';');
    }
    out += rest[0];
    return 1;
}

DTDEntities::Text* DTDEntities::open(std::string_view name, std::size_t depth, SourcePlace where)
{
    Entity* entity = entities.find(name);
    if (!entity) {
        report.add(SourceReport::entityUndeclared, where, name);
        return nullptr;
    }
    entity->isUsed = true;
    // A module is opened at its first reference, so the file of an unused one need not exist.
    if (!entity->text && entity->isModule && !entity->isMissing)
        entity->text = load(*entity, where);
    // Stored, so that a missing module is searched and reported once.
    entity->isMissing = !entity->text;
    if (!entity->text)
        return nullptr;
    // XML forbids recursion of entities (XML 1.0, 4.1, "No Recursion"). Only this reference is left out, because only
    // it is at fault.
    if (entity->text->isOpen) {
        report.add(SourceReport::malformedDeclaration, where, CString(name) + " inside itself");
        return nullptr;
    }
    checkDepth(depth + entity->depth);
    spend(entity->text->text.size());
    entity->text->isOpen = true;
    return entity->text;
}

// Returns the text of the file that a module names; null if it is missing, which is reported.
DTDEntities::Text* DTDEntities::load(const Entity& entity, SourcePlace where)
{
    const std::uint32_t declaring = entity.value.start.file;
    const CString& folder = folders.at(declaring);
    CString path = catalogs.findExternal(entity.publicId, entity.systemId).value_or("");
    // A catalogue's entry is a full path. If there is no such file, the location in the DTD is tried.
    auto found = finder.find({}, path);
    if (!found) {
        path = localPath(entity.systemId);
        found = finder.find(folder, path);
    }
    if (!found) {
        const bool isRemote = path.empty() && !entity.systemId.empty();
        report.add(isRemote ? SourceReport::moduleRemote : SourceReport::moduleMissing, where,
                   !entity.systemId.empty()   ? entity.systemId
                   : !entity.publicId.empty() ? entity.publicId
                                              : entity.name);
        return nullptr;
    }
    if (const auto known = filesById.find(found->id); known != filesById.end())
        return known->second;
    CString bytes;
    const FileCause cause = readFile(found->name, bytes, kMaxNamedFile);
    if (cause == FileCause::fileNotFound) { // the folder can't be listed, so find() couldn't tell
        report.add(SourceReport::moduleMissing, where, entity.systemId);
        return nullptr;
    }
    // A file that exists but can't be read is an error, not a loss: the user can give access to it.
    if (cause != FileCause::none)
        throw SourceRefusal{cantOpen(found->name, cause),
                            report.faultAt(where, CString(entity.systemId) + ": " + inWords(found->name, cause))};
    const CString shown = shownFrom(report.fileNameOf(declaring), folder, path, *found);
    return &addFile(*found, shown, types.adopt(std::move(bytes)));
}

// Divides instead of multiplying, so that no size overflows.
void DTDEntities::spend(std::size_t bytes)
{
    expanded += bytes;
    if (expanded > kSmallExpansion && expanded / kMaxGrowth > read)
        types.refuse(std::to_string(kMaxGrowth) + " times its own size in entities");
}

void DTDEntities::checkDepth(std::size_t depth)
{
    if (depth > kMaxDepth)
        types.refuse(std::to_string(kMaxDepth) + " entities inside each other");
}
