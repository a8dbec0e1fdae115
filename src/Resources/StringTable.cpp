#include "Resources/StringTable.h"

#include <algorithm>
#include <iterator>

namespace {

struct Entry
{
    unsigned id;
    const char* text;
};

// In the order of their ids, because the lookup is a binary search. The texts are fixed to the letter, the spelling of
// "modifed" included. A pattern of a file filter separates its parts by semicolons.
constexpr Entry kTable[] = {
    {IDS_TITLE, "Typeforge"},
    {IDS_DTD_NAME, "DTD importer"},
    {IDS_DTD_DESCRIPTION, "Imports from DTD files"},
    {IDS_FILTER_DTD, "Data type definitions"},
    {IDS_PATTERN_DTD, "*.DTD"},
    {IDS_XMLDATA_NAME, "XML data importer"},
    {IDS_XMLDATA_DESCRIPTION, "Imports from XML documents"},
    {IDS_FILTER_XML, "XML documents (.XML)"},
    {IDS_PATTERN_XML, "*.XML"},
    {IDS_BTD_NAME, "BTD importer"},
    {IDS_BTD_DESCRIPTION, "Imports from BROKERTYPEDESCRIPTION XML documents"},
    {IDS_SCHEMA_NAME, "XML Schema importer"},
    {IDS_SCHEMA_DESCRIPTION, "Imports from XML Schema definitions"},
    {IDS_FILTER_SCHEMA, "XML Schemas (.XSD, .XML)"},
    {IDS_PATTERN_SCHEMA, "*.XSD;*.XML"},
    {IDS_ODBC_NAME, "ODBC importer"},
    {IDS_ODBC_DESCRIPTION, "Imports from ODBC table definitions"},
    {IDS_FILTER_ALL_TYPES, "All message types (.DTD, .XML, .XSD)"},
    {IDS_PATTERN_ALL_TYPES, "*.DTD;*.XML;*.XSD"},
    {IDS_JSON_SCHEMA_NAME, "JSON Schema importer"},
    {IDS_JSON_SCHEMA_DESCRIPTION, "Imports from JSON Schemas, in JSON or YAML"},
    {IDS_FILTER_JSON_SCHEMA, "JSON Schemas (.JSON, .YAML)"},
    {IDS_PATTERN_JSON_SCHEMA, "*.JSON;*.YAML;*.YML"},
    {IDS_OPENAPI_NAME, "OpenAPI importer"},
    {IDS_OPENAPI_DESCRIPTION, "Imports from OpenAPI 3 and AsyncAPI descriptions"},
    {IDS_FILTER_OPENAPI, "API descriptions (.JSON, .YAML)"},
    {IDS_PATTERN_OPENAPI, "*.JSON;*.YAML;*.YML"},
    {IDS_AVRO_NAME, "Avro importer"},
    {IDS_AVRO_DESCRIPTION, "Imports from Avro schemas and protocols"},
    {IDS_FILTER_AVRO, "Avro schemas (.AVSC, .AVPR)"},
    {IDS_PATTERN_AVRO, "*.AVSC;*.AVPR"},
    {IDS_JSON_DATA_NAME, "JSON data importer"},
    {IDS_JSON_DATA_DESCRIPTION, "Imports from JSON documents and lines of JSON"},
    {IDS_FILTER_JSON_DATA, "JSON documents (.JSON, .JSONL)"},
    {IDS_PATTERN_JSON_DATA, "*.JSON;*.JSONL;*.NDJSON"},
    {IDS_WSDL_NAME, "WSDL importer"},
    {IDS_WSDL_DESCRIPTION, "Imports from the messages of WSDL 1.1 and 2.0"},
    {IDS_FILTER_WSDL, "Web services (.WSDL)"},
    {IDS_PATTERN_WSDL, "*.WSDL"},
    {IDS_FILTER_ALL_FILES, "All files (*.*)"},
    {IDS_PATTERN_ALL_FILES, "*.*"},
    {IDS_COLUMN_NAME, "Name"},
    {IDS_COLUMN_DESCRIPTION, "Description"},
    {IDS_COLUMN_QUALIFIER, "Qualifier"},
    {IDS_COLUMN_OWNER, "Owner"},
    {IDS_COLUMN_TYPE, "Type"},
    {IDS_COLUMN_REMARKS, "Remarks"},
    {IDS_AUTOMATIC, "%s (Automatically created)"},
    {IDS_SELECT_SOURCE, "Select source message"},
    {IDS_ERROR_TITLE, "Typeforge Error"},
    {IDS_NO_PARSER, "Error while instantiating the MSXML parser.  This product requires MSXML3 or later "
                    "(8.0.7820.0).  The latest version can be downloaded from https://www.debian.org/distrib/packages"},
    {IDS_XML_INCORRECT, "XML content is incorrect"},
    {IDS_PARSE_ERROR, "Error on line %ld, column %ld.\nError text is '%s'."},
    {IDS_DOM_ERROR, "Error creating DOMDocument from document"},
    {IDS_TRANSFORM_ERROR, "Error while transforming message source (%s) using XSL document"},
    {IDS_CANT_OPEN, "Can't open file %s, error = %u"},
    {IDS_SELECT_TYPE, "Please select a type to view"},
    {IDS_SELECT_IMPORTER, "Please select an importer before continuing"},
    {IDS_SELECT_DATASOURCE, "Please select a datasource before continuing"},
    {IDS_SELECT_TABLE, "Please select a table before continuing"},
    {IDS_NO_DATABASE, "Unable to open database"},
    {IDS_NO_SQL_ENVIRONMENT, "Unable to allocate SQL environment"},
    {IDS_NO_BROKER, "Unable to establish a connection to Broker"},
    {IDS_SELECT_DESTINATION, "Select destination file"},
    {IDS_CURRENT_FOLDER, "Current folder is %s"},
    {IDS_BLANK_FIELD, "This field cannot be left blank - please enter a value."},
    {IDS_NO_CLIENT, "The Broker COM client is not available or is of the wrong version"},
    {IDS_NO_CONNECTION, "Connection Failure."},
    {IDS_REPOSITORY_ERROR, "Repository Error (%s)"},
    {IDS_GENERIC_ERROR, "Generic Error."},
    {IDS_LOGIN_FAILED, "Login Failed - Please check your Username/Password."},
    {IDS_NO_REPOSITORY, "Error - Repository not established."},
    {IDS_CREATION_ERRORS,
     "%d errors encountered during the creation process.  Please consult the list on the following "
     "page."},
    {IDS_SOURCE_TITLE, "Input file selection"},
    {IDS_SOURCE_SUBTITLE, "Select a file that contains your message definition or your message data"},
    {IDS_SOURCE_TYPE_TITLE, "Importer selection"},
    {IDS_SOURCE_TYPE_SUBTITLE,
     "Select one of the available importers from the list below.  Selecting an importer that doesn't "
     "match your data definition may not yield any types.\nYou can also change the default base path "
     "for your messages (not recommended)."},
    {IDS_EDIT_TITLE, "List of generated types"},
    {IDS_EDIT_SUBTITLE,
     "Below is a list of all types that were generated.  You can view a definition by selecting it in "
     "the list and clicking the View button"},
    {IDS_OUTPUT_TITLE, "Output options"},
    {IDS_OUTPUT_SUBTITLE,
     "Here you can select where to store your generated types.  If you have a connection to Broker, "
     "you can create the types directly there, or you can have them written to an XML file on your "
     "computer"},
    {IDS_OUTPUT_FILE_TITLE, "Output file selection"},
    {IDS_OUTPUT_FILE_SUBTITLE, "Select the file that the XML data will be written to"},
    {IDS_LOGIN_TITLE, "Connecting to Broker"},
    {IDS_LOGIN_SUBTITLE, "Enter the IP address or DNS name of your Broker server, as well as the port number and user "
                         "information"},
    {IDS_DATASOURCE_TITLE, "Selecting a data source"},
    {IDS_DATASOURCE_SUBTITLE, "Select the data source that contains your table definitions"},
    {IDS_TABLE_TITLE, "Selecting a table or multiple tables"},
    {IDS_TABLE_SUBTITLE, "Select the table or tables that you want to create types for in Broker"},
    {IDS_CREATED, "%s created successfully"},
    {IDS_MODIFIED, "%s modifed"},
    {IDS_CREATION_ERROR, "%s - creation error"},
    {IDS_SKIPPED, "%s skipped"},
    {IDS_OVERWRITE, "%s%s already exists.\nOverwrite?"},
    {IDS_WELCOME, "This is the Broker Typeforge.\n\nThis utility allows you to import message definitions, as well "
                  "as to deduce message definitions from message instances, and create equivalent types in "
                  "Velmorax Broker.\n\nThe following wizard will guide you through a step-by-step process of "
                  "importing message definitions, viewing the generated type definitions (optional) and create the "
                  "actual types in Broker."},
    {IDS_FINISHED, "The types have been created.\n\nPress 'Back' to import another message, or press 'Finish' to "
                   "end this session."},
    {IDS_NO_ROOT, "Parse error: this document does not contain a root element"},
    {IDS_CYCLIC, "Incorrect XSD file: cyclic references"},
    {IDS_DTD_STATEMENT, "Can not parse DTD statement:\n%s"},
};

static_assert(std::ranges::is_sorted(kTable, {}, &Entry::id));

} // namespace

const char* loadText(unsigned id)
{
    const auto* entry = std::ranges::lower_bound(kTable, id, {}, &Entry::id);
    return entry != std::end(kTable) && entry->id == id ? entry->text : "";
}
