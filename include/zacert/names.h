/*
 * names.h - character sets, object identifiers, distinguished names and GeneralNames.
 *
 * Example: the entries of a DER Name, each with its attribute kind and string type.
 *
 *     ZI_NameEntry *entries = NULL;
 *     if (ZI_DecodeIssuerSubject(&name, &entries) == 0) {
 *         for (const ZI_NameEntry *e = entries; e != NULL; e = e->nextEntry) {
 *             use(e->attrKind, e->attrValue.data, e->attrValue.dataLen, e->attrValue.dataType);
 *         }
 *     }
 *     ZI_FreeName(entries);
 */
#ifndef ZACERT_NAMES_H
#define ZACERT_NAMES_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Character sets -------------------------------------------------------------------------- */

/*
 * ZI_CHARSET_*: the two results of the converters outside ZACERT_Result. They stop at the first
 * character that fails, write nothing and leave the length as it was.
 */
#define ZI_CHARSET_INVALID 0xFFFFFFFFu           /* octets that are invalid in the source form */
#define ZI_CHARSET_NOT_REPRESENTABLE 0xFFFFFFFEu /* a character the target form does not have */

/*
 * The six converters share their shape: `inLen` octets of input (0 or less: nothing, result 0), a
 * buffer or NULL, the number of octets written, which may be up to twice the input's. 101: input
 * above the function's limit; 100: no memory, or a C library without a converter for GB18030.
 * UCS-2 is read big-endian; U+FEFF is skipped and U+FFFE switches the byte order for the rest. A
 * surrogate or an odd last octet is invalid; UTF-8 is valid in its shortest form alone.
 */

/* ZI_Chinese2BmpString: GB18030 to UCS-2 big-endian. Limit 2048 octets. */
ZACERT_API uint32_t ZI_Chinese2BmpString(const uint8_t *in, int32_t inLen, uint8_t *out,
                                         uint32_t *outLen);

/* ZI_BmpString2Chinese: UCS-2 to GB18030. Limit 4096 octets. */
ZACERT_API uint32_t ZI_BmpString2Chinese(const uint8_t *in, int32_t inLen, uint8_t *out,
                                         uint32_t *outLen);

/* ZI_Chinese2UTF8String: GB18030 to UTF-8. Limit 2048 octets. */
ZACERT_API uint32_t ZI_Chinese2UTF8String(const uint8_t *in, int32_t inLen, uint8_t *out,
                                          uint32_t *outLen);

/* ZI_UTF8String2Chinese: UTF-8 (RFC 2279 forms are read) to GB18030. Limit 4096 octets. */
ZACERT_API uint32_t ZI_UTF8String2Chinese(const uint8_t *in, int32_t inLen, uint8_t *out,
                                          uint32_t *outLen);

/*
 * ZI_BmpString2UTF8: UCS-2 to UTF-8, by way of GB18030, which has other characters for some of the
 * private use area. Limit 4096 octets.
 */
ZACERT_API uint32_t ZI_BmpString2UTF8(const uint8_t *in, int32_t inLen, uint8_t *out,
                                      uint32_t *outLen);

/* ZI_UTF82BmpString: UTF-8 to UCS-2 big-endian, by way of GB18030. Limit 4096 octets. */
ZACERT_API uint32_t ZI_UTF82BmpString(const uint8_t *in, int32_t inLen, uint8_t *out,
                                      uint32_t *outLen);

/* ---- Object identifiers ---------------------------------------------------------------------- */

/*
 * ZACert_GetOIDValue: dotted text to DER content octets, at most 1024 (X.690, 8.19). Arcs are
 * parted by full stops or spaces; `textLen` 0xFFFFFFFF measures up to the zero octet. Arcs are
 * numbers of 32 bits and wrap; the second is limited to 39 only under arc 0. 108: NULL or empty
 * text, or another `textLen` above 0x7FFFFFFF; 139: not an object identifier.
 */
ZACERT_API uint32_t ZACert_GetOIDValue(const char *text, uint32_t textLen, uint8_t *out,
                                       uint32_t *outLen);

/* ---- Distinguished names --------------------------------------------------------------------- */

/*
 * ZI_NameEntry: one attribute of a distinguished name (X.501). `attrKind` is the library's number
 * of the attribute type: 2.5.4.3 to 2.5.4.13 are their last arc + 19, 2.5.4.15 is 33, 2.5.4.16 to
 * .34 are arc + 18, 2.5.4.35 to .40 are 54 to 59, 2.5.4.14 is 60, dnQualifier 53, emailAddress 13,
 * any other 0. So C is 25, ST 27, L 26, O 29, OU 30, CN 22. `attrOid` holds the type's content
 * octets. `attrValue` holds the value: text of callers in GB18030; of decoded names a BMPString
 * converted to GB18030 and any other string as it stood, its `dataType` telling which.
 */
typedef struct ZI_NameEntry {
    uint32_t attrKind;
    Anybuf attrOid;
    Anybuf attrValue;
    struct ZI_NameEntry *nextEntry;
} ZI_NameEntry;

/* ZI_Name: holds a list of entries in the order of the encoding. */
typedef struct ZI_Name {
    ZI_NameEntry *first;
} ZI_Name;

/*
 * ZI_EncodeIssuerSuject: the DER Name of a list, one RDN per entry; an empty list gives 30 00.
 * Country (25) and telephone (38) become PrintableString, e-mail (13) IA5String unless its
 * `dataType` is 19, every other value PrintableString where the alphabet allows and BMPString
 * otherwise (a value of `dataType` 12 is taken as UTF-8, any other as GB18030). Each entry's
 * `dataType` is set to the type chosen, but a UTF-8 value that becomes a BMPString keeps its 12, so
 * that a list can be encoded again. A value that cannot be converted gives the converter's result;
 * an entry whose PrintableString or IA5String finds no memory is written without a value.
 */
ZACERT_API uint32_t ZI_EncodeIssuerSuject(ZI_Name *holder, Anybuf **out);

/*
 * ZI_DecodeIssuerSubject: the entries of a DER Name in order; attributes of a multi-valued RDN
 * become entries of their own. Release with ZI_FreeName. 121: an attribute without a value; a
 * BMPString that ZI_BmpString2Chinese refuses fails the whole name with its result; otherwise the
 * readers' codes.
 */
ZACERT_API uint32_t ZI_DecodeIssuerSubject(const Anybuf *name, ZI_NameEntry **outList);

/* ZI_FreeName: releases a list of entries; NULL is ignored. Returns 0. */
ZACERT_API uint32_t ZI_FreeName(ZI_NameEntry *first);

/*
 * ZI_EncodeCertIssuerSuject: as ZI_EncodeIssuerSuject with a string type per entry: octet i of the
 * 256-octet table belongs to entry i. 0: the rule of ZI_EncodeIssuerSuject; 1 or 19
 * PrintableString; 2 or 30 BMPString from GB18030; 3 or 12 UTF8String from GB18030; 4 or 22
 * IA5String; 5 OCTET STRING; 6 BIT STRING. Any other number gives the result 1. Values of
 * `dataType` 12 are taken as UTF-8 here too. Only the choices 1, 4 and 5 set `dataType`, to 19, 22
 * and 19. A value whose chosen type finds no memory is left out of the name, and the result is
 * still 0. Entries from the 257th on follow the rule, and NULL stands for a table of zeros.
 */
ZACERT_API uint32_t ZI_EncodeCertIssuerSuject(ZI_Name *holder, const uint8_t *tagTable256,
                                              Anybuf **out);

/*
 * ZI_GetDN: a name as text: "C=..,O=..,OU=..,CN=..,E=..,S=..,L=..,PA=..,PC=..,Phone=.." in this
 * order of keys, each only where present and repeated for each value, then every other entry as
 * "OID.<dotted>=value", with hex digits in the place of <dotted> where the octets are no object
 * identifier. Values are not escaped. An empty list has length 0.
 */
ZACERT_API uint32_t ZI_GetDN(const ZI_NameEntry *first, char *out, uint32_t *outLen);

/* ---- GeneralName ----------------------------------------------------------------------------- */

/*
 * ZI_GeneralName: one slot per form of a GeneralName (RFC 5280, 4.2.1.6). `present[n]` is non-zero
 * when the form of choice n is there: 0 otherName, 1 rfc822Name, 2 dNSName, 4 directoryName, 6
 * uniformResourceIdentifier, 7 iPAddress. The otherName is a dotted type identifier (borrowed from
 * the caller), a value and its tag (3, 4, 12, 19, 22 or 30; any other counts as 12). Zero the
 * record before its first use; the caller clears its records with ZI_ClearAnybuf and the entries of
 * directoryName with ZI_FreeName.
 */
typedef struct ZI_GeneralName {
    uint8_t present[8];
    uint32_t otherNameType;
    const char *otherNameOid;
    uint32_t otherNameOidLen;
    Anybuf otherNameValue;
    Anybuf rfc822Name;
    Anybuf dNSName;
    ZI_Name directoryName;
    Anybuf uniformResourceIdentifier;
    Anybuf iPAddress;
} ZI_GeneralName;

/*
 * ZI_EncodeGeneralName: the first form present in the order 0, 1, 2, 4, 6, 7 as one GeneralName.
 * Its otherName has no [0] around the value. 110: no form present; 108: otherName whose type is no
 * object identifier or cannot be written. A value that cannot be converted gives the converter's
 * result.
 */
ZACERT_API uint32_t ZI_EncodeGeneralName(ZI_GeneralName *record, Anybuf **out);

/*
 * ZI_EncodeGeneralNameS: every form present, in the same order, as GeneralNames; the otherName as
 * X.509 defines it; 30 00 when there is none. Results as of ZI_EncodeGeneralName, without 110.
 */
ZACERT_API uint32_t ZI_EncodeGeneralNameS(ZI_GeneralName *record, Anybuf **out);

/*
 * ZI_DecodeGeneralNameS: stores the first rfc822Name, dNSName, directoryName, URI and iPAddress of
 * a GeneralNames whose form is not yet present in the record; others are skipped. What a field
 * without its flag held is not freed. `*found` is 1 when a form was stored, and 0 also after a
 * failure.
 */
ZACERT_API uint32_t ZI_DecodeGeneralNameS(const Anybuf *in, ZI_GeneralName *record,
                                          uint32_t *found);

/* ZI_DecodeGeneralName: does nothing and returns 0; kept for programs that call it. */
ZACERT_API uint32_t ZI_DecodeGeneralName(const Anybuf *in, ZI_GeneralName *record);

#ifdef __cplusplus
}
#endif

#endif
