/*
 * text.h - Base64, PEM, and distinguished names as one line of text.
 *
 * These functions return 0, or -1 for every failure, and write no lines to the trace log. They know
 * nothing of the octets they carry.
 *
 * Example: a certificate as PEM.
 *
 *     const char *header = "-----BEGIN CERTIFICATE-----";
 *     const char *footer = "-----END CERTIFICATE-----";
 *     uint32_t len = 0;
 *     if (DER2PEM_data_format(der, derLen, NULL, &len, header, footer) == 0) {
 *         char *pem = malloc((size_t)len + 1);
 *         if (pem != NULL) {
 *             DER2PEM_data_format(der, derLen, pem, &len, header, footer);
 *             fwrite(pem, 1, len, file);
 *             free(pem);
 *         }
 *     }
 */
#ifndef ZACERT_TEXT_H
#define ZACERT_TEXT_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Base64 and PEM ----------------------------------------------------------------------------
 */

/*
 * base64_encode: writes `inLen` octets in the standard alphabet of RFC 4648, padded and without
 * line breaks, and a zero octet: 4 * ((inLen + 2) / 3) + 1 octets in all. -1: a NULL pointer where
 * octets are to be read or written.
 */
ZACERT_API int32_t base64_encode(const uint8_t *in, uint32_t inLen, char *out);

/*
 * base64_decode: the octets of a text that ends in a zero octet; at most 3 for every 4 characters.
 * Characters that are neither of the alphabet nor "=" are skipped. The first group of four with a
 * "=" in it is the last: it gives 3 octets less one for each "=", wherever they stand. One to three
 * characters left over at the end give nothing, and malformed text is no failure: check `*outLen`.
 * -1: a NULL pointer, or a text that could stand for 4 GiB.
 */
ZACERT_API int32_t base64_decode(const char *in, uint8_t *out, uint32_t *outLen);

/*
 * DER2PEM_data_format: PEM (RFC 7468) with CR LF after every line, Base64 in lines of 64
 * characters, and a zero octet that `*outLen` does not count. `header` and `footer` are whole lines
 * without their ends; where both are "" the text is bare Base64. A NULL `out` asks for `*outLen`
 * alone. A `derLen` of 0 gives the length 0 and writes no text. -1: any other pointer is NULL, or
 * the text would reach 4 GiB.
 */
ZACERT_API int32_t DER2PEM_data_format(const uint8_t *der, uint32_t derLen, char *out,
                                       uint32_t *outLen, const char *header, const char *footer);

/*
 * PEM2DER_data_format: the octets of the first PEM block, or of bare Base64 when the text has no
 * "-"; at most 3 for every 4 characters. The first "-" anywhere begins the header, so text before
 * it must have none; a label may be any that has no "-" of its own, and the footer is not compared.
 * Anything but Base64 is skipped inside the block, as by base64_decode, so encrypted PEM does not
 * come out right. A NULL `out` asks for `*derLen` alone. -1: header or footer is missing or cut
 * off, or any other pointer is NULL; `*derLen` is then left alone.
 */
ZACERT_API int32_t PEM2DER_data_format(const char *text, uint32_t textLen, uint8_t *out,
                                       uint32_t *derLen);

/* ---- Distinguished names -----------------------------------------------------------------------
 *
 * Arguments are pairs of octets and their number, in this order and under these keys: C country,
 * O organization, OU organizational unit, CN common name, E e-mail, S state or province, L
 * locality, PA postal address, PC postal code, Phone telephone, IDCard identity-card number. Texts
 * are octets in any encoding, without terminating zero octets; nothing in a value is escaped.
 */

/*
 * ZA_GenerateDN: "C=CN,O=Org,CN=Alice", the components in the order of the arguments. A component
 * that is NULL or has a length of 0 or less is left out; without any the text is empty. A NULL
 * `out` asks for `*outLen` alone. -1: the values have more than 1024 octets together.
 */
ZACERT_API int32_t ZA_GenerateDN(const char *country, int32_t countryLen, const char *organization,
                                 int32_t organizationLen, const char *unit, int32_t unitLen,
                                 const char *commonName, int32_t commonNameLen, const char *email,
                                 int32_t emailLen, const char *state, int32_t stateLen,
                                 const char *locality, int32_t localityLen,
                                 const char *postalAddress, int32_t postalAddressLen,
                                 const char *postalCode, int32_t postalCodeLen, const char *phone,
                                 int32_t phoneLen, char *out, int32_t *outLen);

/*
 * ZA_GenerateDN_ForMultOu: the same with an identity-card number and the most specific component
 * first: E, CN, OU, O, L, S, C, PA, PC, Phone, IDCard. `unit` may hold several units,
 * "Dept,OU=Team". The limit of 1024 octets does not count the identity-card number. -1 also when
 * the text would be longer than INT32_MAX.
 */
ZACERT_API int32_t ZA_GenerateDN_ForMultOu(
    const char *country, int32_t countryLen, const char *organization, int32_t organizationLen,
    const char *unit, int32_t unitLen, const char *commonName, int32_t commonNameLen,
    const char *email, int32_t emailLen, const char *state, int32_t stateLen, const char *locality,
    int32_t localityLen, const char *postalAddress, int32_t postalAddressLen,
    const char *postalCode, int32_t postalCodeLen, const char *phone, int32_t phoneLen,
    const char *idCard, int32_t idCardLen, char *out, int32_t *outLen);

/*
 * ZA_ParseDN: takes such a text apart, in whatever order it is. A value ends at the next comma; of
 * a key that occurs twice the last counts; a component that is missing has the length 0. Any buffer
 * may be NULL, and so may a length; a value never has more than 1024 octets. NULL or a length of 0
 * or less is an empty text. -1: the text has more than 1024 octets; all lengths are then 0.
 */
ZACERT_API int32_t ZA_ParseDN(char *country, int32_t *countryLen, char *organization,
                              int32_t *organizationLen, char *unit, int32_t *unitLen,
                              char *commonName, int32_t *commonNameLen, char *email,
                              int32_t *emailLen, char *state, int32_t *stateLen, char *locality,
                              int32_t *localityLen, char *postalAddress, int32_t *postalAddressLen,
                              char *postalCode, int32_t *postalCodeLen, char *phone,
                              int32_t *phoneLen, const char *text, int32_t textLen);

/*
 * ZA_ParseDN_ForMultOu: the same with the identity-card number, and with commas inside three
 * values. O, OU and CN end only before a key of C, L, S, E or another one of the three, or at the
 * end of the text; so "OU=Dept,OU=Team" is the one unit "Dept,OU=Team", and of OU the first counts.
 */
ZACERT_API int32_t ZA_ParseDN_ForMultOu(
    char *country, int32_t *countryLen, char *organization, int32_t *organizationLen, char *unit,
    int32_t *unitLen, char *commonName, int32_t *commonNameLen, char *email, int32_t *emailLen,
    char *state, int32_t *stateLen, char *locality, int32_t *localityLen, char *postalAddress,
    int32_t *postalAddressLen, char *postalCode, int32_t *postalCodeLen, char *phone,
    int32_t *phoneLen, char *idCard, int32_t *idCardLen, const char *text, int32_t textLen);

#ifdef __cplusplus
}
#endif

#endif
