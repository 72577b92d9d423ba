// Does what a library in a host's process must not do.

#include <cstdio>
#include <cstdlib>
#include <iostream>

int TakeOver(int value)
{
    std::printf("%d\n", value);
    std::cerr << value;
    if (value == 0)
    {
        std::abort();
    }
    return value;
}
