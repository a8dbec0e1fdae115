#pragma once

// Dialog ids of the pages, in the order of the sheet, and of the overwrite dialog. The handlers of Next and Back return
// the page to show by its id. Help topics are found by them, too.
enum DialogId : int
{
    IDD_FIRST = 1004,
    IDD_SOURCE_TYPE = 1010,
    IDD_DATA_SOURCE = 1016,
    IDD_DATABASE_TABLE = 1017,
    IDD_SOURCE = 1008,
    IDD_EDIT = 1011,
    IDD_OUTPUT = 1009,
    IDD_OUTPUT_FILE = 1015,
    IDD_LOGIN = 1014,
    IDD_CREATE_RESULT = 1055,
    IDD_FINISH = 1013,
    IDD_OVERWRITE = 1049
};

// Ids of the controls. An id names one control of its page; two pages may use the same one. The id is the control's
// object name, by which tests and other programs find the control.
enum ControlId : int
{
    IDC_BROWSE = 1019,
    IDC_TO_FILE = 1020,
    IDC_TO_BROKER = 1021,
    IDC_IMPORTERS = 1022,
    IDC_OBJECT_PATH = 1023,
    IDC_TYPES = 1024,
    IDC_VIEW = 1025,
    IDC_HIDE_WELCOME = 1031,
    IDC_FOLDER = 1032,
    IDC_PORT = 1034,
    IDC_PASSWORD = 1036,
    IDC_SERVER = 1038,
    IDC_USER = 1039,
    IDC_OUTPUT_FILE = 1040,
    IDC_INPUT_FILE = 1041,
    IDC_PROGRESS = 1042,
    IDC_DATA_SOURCES = 1047,
    IDC_TABLES = 1048,
    IDC_LOGON_TRUSTED = 1049,
    IDC_LOGON_BROKER = 1050,
    IDC_OVERWRITE_TEXT = 1050,
    IDC_YES = 1051,
    IDC_YES_TO_ALL = 1052,
    IDC_NO = 1053,
    IDC_NO_TO_ALL = 1054,
    IDC_RESULTS = 1056,
    IDC_WELCOME = 1057,
    IDC_FINISHED = 1058,
    IDC_TOTALS = 1111, // of the results
    IDC_FAILURES_ONLY = 1112,
    IDC_COPY = 1113,
    IDC_SAVE = 1114,
    IDC_STOP = 1121, // of the overwrite dialog
    IDC_SELECTED_COUNT = 1122,
    IDC_SELECTED_ONLY = 1123,
    IDC_HINT = 1124,
    IDC_SOURCE_USER = 1101, // of the logon dialog of a data source
    IDC_SOURCE_PASSWORD = 1102,
    IDC_FULL_READING = 1103,
    IDC_MAIN_ELEMENT = 1104,
    IDC_DETAILS = 1105,
    IDC_NOT_CARRIED_OVER = 1106,
    IDC_FOLDER_LAYOUT = 1107, // of several sources
    IDC_CHOOSE_FOLDER = 1108,
    IDC_PREVIEW = 1131,
    IDC_COUNTS = 1132, // of a source's types
    IDC_COUNT_TYPES = 1133,
    IDC_READ_IN_FULL = 1134,
    IDC_OUTPUT_STATE = 1135,
    IDC_DONE = 1136, // the result, on the last page
    IDC_OPEN_FOLDER = 1137,
    IDC_VIEW_FILE = 1138,
    IDC_CATALOGS = 1139,
    IDC_CHOOSE_CATALOGS = 1140,
    IDC_CATALOG_STATE = 1141
};

// Resource ids of the pictures and the icon.
enum PictureId : int
{
    IDB_HEADER = 1000,
    IDB_HEADER_LOW_COLOUR = 1001,
    IDB_WATERMARK = 1002,
    IDB_WATERMARK_LOW_COLOUR = 1003,
    IDI_TYPEFORGE = 1027
};
