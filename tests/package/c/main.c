/* A C program as a user writes one: the installed header, the installed library. */
#include <zacert.h>

int main(void) {
    ZAPR_Free(0);
    return 0;
}
