#pragma once

class MsgBase;
class Output;

/// False where there is none with a name: what `btd` makes of another document has none.
bool holdsTypes(MsgBase& message);

/// The types of an import, in its order: a line each (folder and name, a tab, the description), as one JSON array, or
/// as a graph in the DOT language.
void writeList(MsgBase& message, Output& output);
void writeJsonList(MsgBase& message, Output& output);
void writeGraph(MsgBase& message, Output& output);
