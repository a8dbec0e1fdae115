#include "Utils/BrokerType.h"

#include "Utils/XMLDoc.h"

BrokerTypeDescription::BrokerTypeDescription(const CString& name, const CString& description, const CString& path)
{
    Initialize(name, description, path);
}

void BrokerTypeDescription::Initialize(const CString& typeName, const CString& typeDescription, const CString& path)
{
    document = XmlDocument().queryDocument();
    root = document.createElement("BROKERTYPEDESCRIPTION");
    name = typeName;
    root.setAttribute("NAME", (path.ends_with('\\') ? path : path + '\\') + name);
    if (!typeDescription.empty()) {
        root.setAttribute("DESCRIPTION", typeDescription);
        description = typeDescription;
    }
    document.appendChild(root);
}

int BrokerTypeDescription::addRow()
{
    if (state != stateEmpty)
        return 0;
    content = document.createElement("ROW");
    addContent(stateRow);
    return 1;
}

int BrokerTypeDescription::addField(const CString& fieldName, const CString& fieldDescription, const CString& type)
{
    if (state != stateRow)
        return 0;
    addDescribed("FIELD", fieldName, fieldDescription).setAttribute("TYPE", type);
    return 1;
}

int BrokerTypeDescription::addEnum()
{
    if (state != stateEmpty)
        return 0;
    content = document.createElement("ENUM");
    addContent(stateEnum);
    return 1;
}

int BrokerTypeDescription::addConstant(const CString& constantName, const CString& constantDescription)
{
    if (state != stateEnum)
        return 0;
    addDescribed("CONSTANT", constantName, constantDescription);
    return 1;
}

int BrokerTypeDescription::addArray(const CString& size, const CString& componentType)
{
    if (state != stateEmpty)
        return 0;
    content = document.createElement("ARRAY");
    content.setAttribute("SIZE", size);
    addComponent(componentType);
    addContent(stateArray);
    return 1;
}

int BrokerTypeDescription::addTable(const CString& componentType)
{
    if (state != stateEmpty)
        return 0;
    content = document.createElement("TABLE");
    addComponent(componentType);
    addContent(stateTable);
    return 1;
}

void BrokerTypeDescription::queryXML(CString& out) const
{
    out.clear();
    document.appendXml(out);
}

void BrokerTypeDescription::addComponent(const CString& componentType)
{
    const IXMLDOMElement component = document.createElement("COMPONENT");
    component.setAttribute("TYPE", componentType);
    content.appendChild(component);
}

void BrokerTypeDescription::addContent(State added)
{
    root.appendChild(content);
    state = added;
}

IXMLDOMElement BrokerTypeDescription::addDescribed(std::string_view tag, const CString& itemName,
                                                   const CString& itemDescription)
{
    const IXMLDOMElement element = document.createElement(tag);
    element.setAttribute("NAME", itemName);
    if (!itemDescription.empty())
        element.setAttribute("DESCRIPTION", itemDescription);
    content.appendChild(element);
    return element;
}
