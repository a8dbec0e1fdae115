// The table of importers, used by the wizard, the command line and its completion.
#include "Import/Btd/BrokerMsg.h"
#include "Import/Dtd/DTDFullMsg.h"
#include "Import/Dtd/DTDMsg.h"
#include "Import/Json/JsonDataMsg.h"
#include "Import/Json/JsonMessage.h"
#include "Import/Schema/Full/SchemaFullMsg.h"
#include "Import/Schema/Full/WsdlMsg.h"
#include "Import/Schema/Literal/SchemaMsg.h"
#include "Import/Tables/ODBCMsg.h"
#include "Import/XmlData/XMLDataMsg.h"
#include "Resources/DialogIds.h"
#include "Resources/StringIds.h"

// The rows are defined here and not with their classes, because a row needs the full reading, which refers to the row
// of the literal one.
//
// Columns: base path, name, description, factory, next page, full reading; then the source.
MsgUIDescriptor DTDMessage::m_descr("\\sys\\rosettanet\\", IDS_DTD_NAME, IDS_DTD_DESCRIPTION, DTDMessage::New,
                                    IDD_SOURCE, DTDFullMessage::New, {.word = "dtd", .filterId = IDS_FILTER_DTD});
MsgUIDescriptor XMLDataMessage::m_descr("\\sys\\xml\\", IDS_XMLDATA_NAME, IDS_XMLDATA_DESCRIPTION, XMLDataMessage::New,
                                        IDD_SOURCE, nullptr, {.word = "xml", .filterId = IDS_FILTER_XML});
MsgUIDescriptor SchemaMessage::m_descr("\\sys\\xml\\", IDS_SCHEMA_NAME, IDS_SCHEMA_DESCRIPTION, SchemaMessage::New,
                                       IDD_SOURCE, SchemaFullMessage::New,
                                       {.word = "xsd", .filterId = IDS_FILTER_SCHEMA});
MsgUIDescriptor BrokerMessage::m_descr("\\", IDS_BTD_NAME, IDS_BTD_DESCRIPTION, BrokerMessage::New, IDD_SOURCE, nullptr,
                                       {.word = "btd", .filterId = IDS_FILTER_XML, .namesFolders = true});
MsgUIDescriptor ODBCMessage::m_descr("\\", IDS_ODBC_NAME, IDS_ODBC_DESCRIPTION, ODBCMessage::New, IDD_DATA_SOURCE,
                                     nullptr, {.word = "odbc", .readsTables = true});
MsgUIDescriptor WsdlMessage::m_descr("\\sys\\xml\\", IDS_WSDL_NAME, IDS_WSDL_DESCRIPTION, WsdlMessage::New, IDD_SOURCE,
                                     nullptr, {.word = "wsdl", .filterId = IDS_FILTER_WSDL, .isSet = true});
MsgUIDescriptor
    JsonSchemaMessage::m_descr("\\sys\\json\\", IDS_JSON_SCHEMA_NAME, IDS_JSON_SCHEMA_DESCRIPTION,
                               JsonSchemaMessage::New, IDD_SOURCE, nullptr,
                               {.word = "jsonschema", .filterId = IDS_FILTER_JSON_SCHEMA, .hasFolders = true});

MsgUIDescriptor OpenApiMessage::m_descr(
    "\\sys\\json\\", IDS_OPENAPI_NAME, IDS_OPENAPI_DESCRIPTION, OpenApiMessage::New, IDD_SOURCE, nullptr,
    {.word = "openapi", .filterId = IDS_FILTER_OPENAPI, .hasFolders = true, .hasCatalogs = true});
MsgUIDescriptor AvroMessage::m_descr("\\sys\\json\\", IDS_AVRO_NAME, IDS_AVRO_DESCRIPTION, AvroMessage::New, IDD_SOURCE,
                                     nullptr, {.word = "avro", .filterId = IDS_FILTER_AVRO, .hasFolders = true});

MsgUIDescriptor JsonDataMessage::m_descr("\\sys\\json\\", IDS_JSON_DATA_NAME, IDS_JSON_DATA_DESCRIPTION,
                                         JsonDataMessage::New, IDD_SOURCE, nullptr,
                                         {.word = "json", .filterId = IDS_FILTER_JSON_DATA, .hasFolders = true});

// In the order in which users see them. New rows come last, so that the others keep their places.
MsgUIDescriptor* g_amud[] = {&DTDMessage::m_descr,
                             &XMLDataMessage::m_descr,
                             &SchemaMessage::m_descr,
                             &BrokerMessage::m_descr,
                             &ODBCMessage::m_descr,
                             &WsdlMessage::m_descr,
                             &JsonSchemaMessage::m_descr,
                             &OpenApiMessage::m_descr,
                             &AvroMessage::m_descr,
                             &JsonDataMessage::m_descr,
                             nullptr};

MsgUIDescriptor* importerNamed(std::string_view word)
{
    MsgUIDescriptor** importer = g_amud;
    while (*importer && word != (*importer)->querySource().word)
        ++importer;
    return *importer;
}
