#pragma once

class Element;
class MsgBase;
class Output;

/// Returns whether any type has a name. `btd` makes types without a name from documents that are not type documents.
/// Like the functions below that take an importer, it moves the importer's cursor (MsgBase::beginEnum()).
bool holdsTypes(MsgBase& message);

/// Writes the types of an import in its order, one a line: folder and name, a tab, the description. With `isAligned`
/// descriptions start in one column, for people.
void writeList(MsgBase& message, bool isAligned, Output& output);

/// Writes the same as one JSON object, with the parts of the types. docs/list.schema.json describes it.
void writeJsonList(MsgBase& message, Output& output);

/// Writes the types as a graph in the DOT language: a box for each record and enumeration, whatever their number.
void writeGraph(MsgBase& message, Output& output);

/// Writes the document of one type. With `isIndented` each element is on a line of its own, for people.
void writeType(Element& type, bool isIndented, Output& output);
