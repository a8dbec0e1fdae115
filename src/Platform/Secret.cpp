#include "Platform/Secret.h"

#include <cstring>

void wipe(CString& secret)
{
    secret.resize(secret.capacity()); // never a new allocation
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}
