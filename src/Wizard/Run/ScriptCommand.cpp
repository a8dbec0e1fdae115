#include "Wizard/Run/ScriptCommand.h"

#include "Import/Full/FullMessage.h"

namespace {

// Returns a word quoted for a shell; one of harmless characters stays as it is. Between single quotes every character
// but that quote is literal: https://pubs.opengroup.org/onlinepubs/9699919799/utilities/V3_chap02.html#tag_18_02
CString quoted(const CString& word)
{
    constexpr std::string_view plain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_./:@%+,=";
    if (!word.empty() && word.find_first_not_of(plain) == CString::npos)
        return word;
    CString text = "'";
    for (const char c : word)
        text += c == '\'' ? CString("'\\''") : CString(1, c);
    return text + "'";
}

// Returns the name of a data source as the command's argument. A name that would be taken for a connection string, an
// option or a file of arguments becomes a connection string.
CString dataSourceArgument(const CString& name)
{
    return name.find('=') != CString::npos || name.starts_with('-') || name.starts_with('@') ? "DSN=" + name : name;
}

// Returns an option and its value as one word, so that the value may begin with a dash.
CString option(const char* name, const CString& value)
{
    return value.empty() ? CString() : CString(" ") + name + "=" + quoted(value);
}

} // namespace

// The wizard's own choices that differ from the command's defaults become options. The wizard also writes a document
// without types, which the command refuses without --allow-empty.
CString ScriptCommand::text(MsgBase& message) const
{
    MsgUIDescriptor& importer = *message.queryDescriptor();
    CString line = CString("typeforge-import ") + importer.querySource().word + " " +
                   quoted(importer.querySource().readsTables ? dataSourceArgument(source) : source);
    for (const CString& further : furtherSources)
        line += " " + quoted(further);
    if (basePath != importer.getBasePath())
        line += option("--base-path", basePath);
    for (const CString& table : tables)
        line += option("--table", table);
    if (const auto* full = dynamic_cast<const FullMessage*>(&message)) {
        line += importer.hasFull() ? " --full" : "";
        if (full->queryLayout() != FullMessage::Layout::automatic)
            line += option("--folders", full->queryLayout() == FullMessage::Layout::byMainType ? "main" : "namespace");
        line += option("--root", full->queryRoot());
        for (const CString& catalog : catalogs)
            line += option("--catalog", catalog);
    }
    if (message.beginEnum() == 0)
        line += " --allow-empty";
    line += option("--output", output);
    if (output.empty()) // --user is the broker's then
        line += option("--create", address) + option("--user", user) + option("--source-user", sourceUser) +
                option("--overwrite", overwrite);
    else
        line += option("--user", sourceUser);
    return line;
}
