#include "Files/TemporaryFiles.h"

#include "Files/Descriptor.h"

#include <cerrno>

int TemporaryFiles::add(const CString& folder, std::string_view bytes, CString& name, const char* suffix)
{
    TemporaryFile& file = files.emplace_back();
    Descriptor out(file.create(folder, "QEL_", suffix));
    name = file.queryName();
    const bool whole = out.isOpen() && out.write(bytes) && out.close();
    return whole ? 0 : errno;
}
