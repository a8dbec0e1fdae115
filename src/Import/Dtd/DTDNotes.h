#pragma once

#include "Import/Dtd/DTDText.h"
#include "Import/SourceReport.h"

/// Reports what the literal reading of a DTD passes over: declarations of entities and notations, conditional sections,
/// and every reference to a parameter entity. The file is the report's first.
void reportPassedOver(std::string_view text, const TextLines& lines, SourceReport& report);
