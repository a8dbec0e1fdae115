#include "Utils/Json.h"

#include <nlohmann/json.hpp>

CString jsonText(std::string_view text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}
