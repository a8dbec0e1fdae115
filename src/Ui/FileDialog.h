#pragma once

#include "Base/Text.h"

#include <vector>

class QWidget;

/// A row of a file dialog's list of file types: its label and its patterns ("*.XSD;*.XML"), which ignore letter case.
struct FileFilter
{
    CString label;
    CString patterns;
};

/// The settings of a file dialog.
struct FileQuestion
{
    CString title;
    std::vector<FileFilter> filters;
    CString folder; ///< the folder that is shown first, if the name has no path
    CString name;   ///< preset file name, in the folder or with a path; may be empty
};

/// Asks for an existing file with the platform's dialog. Returns its name, empty if the user cancels. Names are
/// absolute. Blocks in an event loop of its own, as the functions below.
CString chooseFileToOpen(QWidget* owner, const FileQuestion& question);

/// The same for one or several files. Returns their names, sorted; empty if the user cancels.
std::vector<CString> chooseFilesToOpen(QWidget* owner, const FileQuestion& question);

/// Asks for a folder. Returns its name; empty if the user cancels.
CString chooseFolder(QWidget* owner, const CString& title, const CString& start);

/// The same as chooseFileToOpen() for a file to write, which need not exist; the dialog itself asks before it takes an
/// existing one. When the user picks a file type with one suffix, the name gets this suffix.
CString chooseFileToSave(QWidget* owner, const FileQuestion& question);
