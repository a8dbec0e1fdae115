// Schema locations, looked up in a folder with names that differ only in case, and with symbolic links in a loop.
#include "Files/FileFinder.h"
#include "Folder.h"
#include "Target.h"

namespace {

struct Tree : Folder
{
    Tree()
    {
        for (const char* folder : {"common", "Common", "common/Deep"})
            std::filesystem::create_directory(path + folder);
        for (const char* file : {"a.xsd", "A.xsd", "common/Party.xsd", "Common/party.xsd", "common/Deep/x y.XSD"})
            write(file, "<a/>");
        std::filesystem::create_symlink(".", path + "here");
        std::filesystem::create_symlink("circle", path + "circle");
    }
};

} // namespace

void fuzz(std::string_view input)
{
    static const Tree tree;
    const CString path = localPath(input);
    if (path.find('\0') != CString::npos)
        std::abort();
    if (path.starts_with('/'))
        return; // outside of the tree
    FileFinder finder;
    const auto found = finder.find(tree.path, path);
    if (found && (!std::filesystem::is_regular_file(found->name) || identify(found->name) != found->id))
        std::abort();
}
