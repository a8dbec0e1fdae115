#pragma once

class Element;
class MsgBase;
class Output;

/// False if no type has a name: `btd` makes such types of other documents.
bool holdsTypes(MsgBase& message);

/// The types of an import, in its order, a line each: folder and name, a tab, the description. `isAligned` puts the
/// descriptions into a column, for people.
void writeList(MsgBase& message, bool isAligned, Output& output);

/// The same as one JSON object, with all that the types are made of.
void writeJsonList(MsgBase& message, Output& output);

/// The same as a graph in the DOT language.
void writeGraph(MsgBase& message, Output& output);

/// The document of one type. `isIndented` gives each element a line of its own, for people.
void writeType(Element& type, bool isIndented, Output& output);
