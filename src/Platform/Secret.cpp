#include "Platform/Secret.h"

#include <cstring>
#include <sys/prctl.h>

void wipe(CString& secret)
{
    secret.resize(secret.capacity()); // never a new allocation
    explicit_bzero(secret.data(), secret.size());
    secret.clear();
}

void keepOutOfCores()
{
    prctl(PR_SET_DUMPABLE, 0);
}
