#pragma once

#include <string_view>

/// Owns an open file descriptor and closes it; -1 if there is none.
class Descriptor
{
public:
    /// Takes ownership of `opened`.
    explicit Descriptor(int opened = -1) : fd(opened) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// Returns the descriptor, which stays owned by this object; -1 if there is none.
    int get() const { return fd; }
    bool isOpen() const { return fd >= 0; }

    /// Closes the descriptor and takes ownership of `opened`.
    void reset(int opened);

    /// Closes the descriptor. Returns false with errno if written bytes may be lost; the descriptor is closed in any
    /// case. Call it for a written file, because the destructor hides the failure.
    bool close();

    /// Writes all of the bytes. Returns false with errno on failure, when a part may have been written.
    bool write(std::string_view bytes) const;

private:
    int fd;
};

/// Turns two faults into errors of the calls that meet them. Reading or writing a standard stream that the process was
/// started without fails with EBADF; otherwise the next file or connection would get its number, and what is written to
/// the stream. A write beyond the limit on file sizes fails with EFBIG; otherwise a signal would end the process. Both
/// programs call it first, before they open anything.
void turnFileFaultsIntoErrors();
