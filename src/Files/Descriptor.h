#pragma once

#include <string_view>

/// An open file of the system's, closed with the object; -1 where there is none.
class Descriptor
{
public:
    explicit Descriptor(int opened = -1) : fd(opened) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return fd; }
    bool isOpen() const { return fd >= 0; }

    /// Takes a new one in the place of the one before.
    void reset(int opened);

    /// False with errno when what was written has not all arrived; nothing is open from then on in any case.
    bool close();

    /// Writes all of it, or answers false with errno.
    bool write(std::string_view bytes) const;

private:
    int fd;
};
