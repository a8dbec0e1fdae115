// bench_dtd_peer parse|scan FILE: the peers of the DTD import: libxml2's DTD parser, and a bare scan for '<' and '>'.
#include "Files/File.h"

#include <libxml/parser.h>

#include <cstdio>

namespace {

int parse(const char* file)
{
    xmlDtd* dtd = xmlParseDTD(nullptr, reinterpret_cast<const xmlChar*>(file));
    xmlFreeDtd(dtd);
    return dtd ? 0 : 1;
}

int scan(const char* file)
{
    CString text;
    if (readFile(file, text) != FileCause::none)
        return 1;
    std::size_t found = 0;
    for (const char c : text)
        found += c == '<' || c == '>';
    std::printf("%zu\n", found);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    return std::string_view(argv[1]) == "parse" ? parse(argv[2]) : scan(argv[2]);
}
