/*
 * identity.h - identity numbers that China's national certificate standard (GB/T 20518) puts into
 * extensions of certificates: of persons (identity card, officer card, passport) and organisations.
 *
 * Example: a passport number, as an extension that is not critical.
 *
 *     ZA_GBPRIV_IDENTIFY numbers = {0};
 *     numbers.passportFlag = 1;
 *     memcpy(numbers.passportNumber, "E1234567", 8);
 *     numbers.passportNumberLen = 8;
 *     ZACert_SetCertPrivate_GB(cert, ZA_GB_IDENTITY, &numbers, sizeof numbers, 0);
 */
#ifndef ZACERT_IDENTITY_H
#define ZACERT_IDENTITY_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * ZA_GbType: the extensions, each below two arcs. The two number the business registration and the
 * organisation code in opposite order.
 */
typedef enum ZA_GbType {
    ZA_GB_OLD_IDENTITY = 147,              /* 1.2.86.11.7.1: ZA_GBPRIV_IDENTIFY */
    ZA_GB_OLD_INSURANCE = 151,             /* 1.2.86.11.7.2 */
    ZA_GB_OLD_BUSINESS_REGISTRATION = 152, /* 1.2.86.11.7.4 */
    ZA_GB_OLD_ORGANIZATION_CODE = 153,     /* 1.2.86.11.7.3 */
    ZA_GB_OLD_TAXATION = 154,              /* 1.2.86.11.7.5 */
    ZA_GB_IDENTITY = 157,                  /* 1.2.156.10260.4.1.1: ZA_GBPRIV_IDENTIFY */
    ZA_GB_INSURANCE = 161,                 /* 1.2.156.10260.4.1.2 */
    ZA_GB_BUSINESS_REGISTRATION = 162,     /* 1.2.156.10260.4.1.3 */
    ZA_GB_ORGANIZATION_CODE = 163,         /* 1.2.156.10260.4.1.4 */
    ZA_GB_TAXATION = 164                   /* 1.2.156.10260.4.1.5 */
} ZA_GbType;

/*
 * ZA_GBPRIV_IDENTIFY: a person's numbers. A flag of 1 says that the number is there, any other
 * value that it is not. Lengths are 1 to 512 octets.
 */
typedef struct ZA_GBPRIV_IDENTIFY {
    uint32_t residenterCardFlag;
    uint32_t militaryOfficerCardFlag;
    uint32_t passportFlag;
    uint8_t residenterCardNumber[512];
    int32_t residenterCardNumberLen;
    uint8_t militaryOfficerCardNumber[512]; /* GB18030; written as UTF-8 */
    int32_t militaryOfficerCardNumberLen;
    uint8_t passportNumber[512];
    int32_t passportNumberLen;
} ZA_GBPRIV_IDENTIFY;

/*
 * ZACert_SetCertPrivate_GB: appends the extension of `type` (ZA_GbType) to the private extensions
 * of a certificate context; see ZACert_SetCertAttributePrivate. `value` is the number's octets,
 * written as one PrintableString whatever they are, or a ZA_GBPRIV_IDENTIFY and its size, written
 * as a SET of the numbers that are there. `critical` is 0 or 1. 108: a NULL argument, an unknown
 * type, another `critical`, a length out of range, a record without any flag, a number that could
 * not be encoded; 0xFFFFFFFF: an officer card number that is no GB18030; 100.
 */
ZACERT_API uint32_t ZACert_SetCertPrivate_GB(void *ctx, uint32_t type, const void *value,
                                             uint32_t valueLen, uint32_t critical);

#ifdef __cplusplus
}
#endif

#endif
