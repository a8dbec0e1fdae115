// Types that were imported from a document: each must be valid for a repository, and for the windows.
#include "Broker/Client/TypeDocument.h"

#include "Import.h"
#include "Import/Btd/BrokerMsg.h"
#include "Types/TypeStructure.h"

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void look(const TypeStructure& types, std::uint32_t type)
{
    bool isComplete = false;
    require(types.parts(type).size() == types.partCount(type));
    require(types.reach(type, 50, isComplete).front() == type);
    for (const TypePart& part : types.parts(type))
        types.contentOf(part);
    for (const std::uint32_t user : types.users(type))
        require(user < types.size());
}

} // namespace

void fuzz(std::string_view input)
{
    queryTypeName(input);
    BrokerMessage importer;
    importBytes(importer, input, false);
    const TypeStructure types(importer);
    for (std::uint32_t type = 0; type < types.size(); ++type)
        look(types, type);
    importer.beginEnum();
    CString document;
    while (Element* const type = importer.enumNext()) {
        type->asXML(document);
        require(queryTypeName(document).has_value());
    }
}
