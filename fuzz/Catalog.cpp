// XML catalogues that refer to each other, and identifiers to look up in them.
#include "Folder.h"
#include "Import/Full/Catalogs.h"
#include "Target.h"

void fuzz(std::string_view input)
{
    static Folder folder;
    const std::size_t end = std::min(input.find('\n'), input.size());
    folder.write("c.xml", CString(input.substr(std::min(end + 1, input.size()))));
    SourceReport report;
    Catalogs catalogs(report);
    try {
        catalogs.load(folder.path + "c.xml");
    } catch (const SourceRefusal&) {
        return;
    }
    const std::string_view identifier = input.substr(0, end);
    for (const auto& found : {catalogs.findExternal(identifier, ""), catalogs.findExternal("", identifier),
                              catalogs.findExternal(identifier, "x"), catalogs.findUri(identifier)})
        if (found && !found->empty() && !found->starts_with('/'))
            std::abort();
}
