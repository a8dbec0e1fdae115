// bench_json_peer FILE: the peer of the import of JSON lines: simdjson reads each document, and a walk visits it all.
#include <cstdio>
#include <simdjson.h>
#include <string_view>

namespace {

using simdjson::dom::element_type;

// Returns the number of bytes in names and texts, and of other values.
std::size_t walk(const simdjson::dom::element& value)
{
    std::size_t seen = 0;
    if (value.type() == element_type::ARRAY) {
        for (const auto item : simdjson::dom::array(value))
            seen += walk(item);
    } else if (value.type() == element_type::OBJECT) {
        for (const auto member : simdjson::dom::object(value))
            seen += member.key.size() + walk(member.value);
    } else {
        seen += value.is_string() ? std::string_view(value).size() : 1;
    }
    return seen;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    simdjson::dom::parser parser;
    std::size_t seen = 0;
    for (auto document : parser.load_many(argv[1]))
        seen += walk(document.value());
    std::printf("%zu\n", seen);
    return 0;
}
