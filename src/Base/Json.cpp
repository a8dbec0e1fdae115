#include "Base/Json.h"

#include <nlohmann/json.hpp>

CString jsonText(std::string_view text)
{
    return nlohmann::json(toXmlText(text)).dump();
}
