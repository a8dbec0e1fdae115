#include "Import/MsgUIDescriptor.h"

#include "Resources/StringTable.h"

MsgUIDescriptor::MsgUIDescriptor(const CString& basePath, unsigned int nameId, unsigned int descriptionId,
                                 Factory factory, long nextPage, FullFactory fullFactory,
                                 const ImporterSource& source) :
    basePath(basePath),
    nameId(nameId), descriptionId(descriptionId), nextPage(nextPage), factory(factory), fullFactory(fullFactory),
    source(source)
{}

CString& MsgUIDescriptor::getName()
{
    if (nameId != 0)
        name = loadText(nameId);
    nameId = 0;
    return name;
}

CString& MsgUIDescriptor::getDescription()
{
    if (descriptionId != 0)
        description = loadText(descriptionId);
    descriptionId = 0;
    return description;
}
