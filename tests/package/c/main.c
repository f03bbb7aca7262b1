/* A C program as a user writes one: the installed headers, the installed libraries. */
#include <zacert.h>
#include <zacert/gm.h>
#include <zacert/pkcs11.h>

int main(void) {
    uint32_t len = 0;
    ZAPR_Free(0);
    return zacert_gm_sm2_sign(0, 0, 0, &len, 0) != 0 || zacert_pkcs11_sign(0, 0, 0, &len, 0) != 0;
}
