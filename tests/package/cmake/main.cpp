// A C++ program as a user writes one: the installed headers, one of the installed libraries.
#include <zacert.h>

int main() {
    ZAPR_Free(nullptr);
}
