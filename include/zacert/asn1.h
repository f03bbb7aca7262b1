/*
 * asn1.h - the DER codec (ITU-T X.690): headers, times, one reader and one writer per type.
 *
 * Writers take a value and hand back one complete element in a new record. Readers take a record
 * that holds exactly one element (identifier, length and content add up to `dataLen`, else 102) and
 * hand back its content. Apart from SEQUENCE, SET and the two times, readers do not compare the
 * tag, so any reader of a string reads any primitive element. Every output record is released with
 * ZI_FreeAnybuf, with the exception stated at ZAsn1_ReadObjectId.
 *
 * A content of exactly 65535 octets is written with three length octets (83 00 FF FF); readers take
 * that form and the minimal one. Lengths of up to four octets are read; longer ones give 101.
 *
 * Example: write SEQUENCE { INTEGER 5, NULL } and read it back.
 *
 *     Anybuf *number = NULL, *null = NULL, *sequence = NULL, *children = NULL;
 *     uint32_t value = 0;
 *     if (ZAsn1_WriteInteger(5, &number) == 0 && ZAsn1_WriteNull(&null) == 0) {
 *         number->next = null;
 *         null->prev = number;
 *         if (ZAsn1_WriteSequence(number, &sequence) == 0 &&
 *             ZAsn1_ReadSequence(sequence, &children) == 0 &&
 *             ZAsn1_ReadInteger(children, &value) == 0) {
 *             use(value);
 *         }
 *     }
 *     ZI_FreeAnybuf(children);
 *     ZI_FreeAnybuf(sequence);
 *     ZI_FreeAnybuf(number);
 */
#ifndef ZACERT_ASN1_H
#define ZACERT_ASN1_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Tag, length and time -------------------------------------------------------------------- */

/*
 * Of the functions below, these hand out allocated cells (`uint32_t **`), each released with
 * ZAPR_Free: GetTagInfo and GetLengthInfo (both outputs), ItoCTime (the length), IntToChar (the
 * count). ItoCTime and IntToChar allocate their octets too. All others fill plain integers.
 */

/*
 * ZAsn1_Low_GetTagInfo: reads the identifier octets at `*pos`, at most six, and moves `*pos` behind
 * them. The tag is the low five bits below 0x80, the whole octet from 0x80 on, and the accumulated
 * number in the high-tag-number form. The caller vouches for the octets. 106: `pos` or `*pos` is
 * NULL; 101: a tag number of more than five octets; 100.
 */
ZACERT_API uint32_t ZAsn1_Low_GetTagInfo(const uint8_t **pos, uint32_t **tagCell,
                                         uint32_t **tagOctetsCell);

/*
 * ZAsn1_Low_GetLengthInfo: reads the length octets at `*pos` (1 to 5) and moves `*pos` behind them;
 * the count includes the initial octet. An initial 0x80 reads as length 0. The caller vouches for
 * the octets. 101: more than four subsequent octets; 100.
 */
ZACERT_API uint32_t ZAsn1_Low_GetLengthInfo(const uint8_t **pos, uint32_t **lengthCell,
                                            uint32_t **lenOctetsCell);

/*
 * ZAsn1_GetCertLength: the whole length of the element that begins at `first`: identifier, length
 * and content octets, read from its header alone (at most eleven octets). 101: malformed header, or
 * a total above 32 bits.
 */
ZACERT_API uint32_t ZAsn1_GetCertLength(const uint8_t *first, uint32_t *totalLength);

/*
 * ZAsn1_GetLengthInfo: an old variant kept for existing callers; new code uses
 * ZAsn1_Low_GetLengthInfo. From the third octet on it seeks the first with bit 0x40 or 0x10 and
 * takes the next one as initial length octet: long form when that has bit 0x40 or 0x10, then
 * shifting left by eight after each following octet. `*count` is the initial octet's low seven
 * bits. `*pos` stays. It has no bound at all: the caller must vouch that such an octet exists.
 */
ZACERT_API uint32_t ZAsn1_GetLengthInfo(const uint8_t **pos, uint32_t *length, uint32_t *count);

/* ZAsn1_Low_ReadDNTag: the first octet as a tag. 106: `p` is NULL. */
ZACERT_API uint32_t ZAsn1_Low_ReadDNTag(const uint8_t *p, uint32_t *tag);

/*
 * ZAsn1_Low_WriteTagAndLength: a new record with the header of a primitive element for the
 * `src->dataLen` content octets, with room for them at `*writePos`; the caller copies them there.
 * `identifier` counts in its low octet. For BIT STRING (3) the unused-bits octet, for INTEGER (2) a
 * 0x00 in front of a first octet from 0x80 on is written and counted. 101: content too long; 100.
 */
ZACERT_API uint32_t ZAsn1_Low_WriteTagAndLength(const Anybuf *src, uint32_t identifier,
                                                Anybuf **out, uint8_t **writePos);

/*
 * ZAsn1_Low_ReadTagAndLength: parses the header at `*pos`, which must account for exactly
 * `src->dataLen` octets, and moves `*pos` to the first content octet. `*out` is a new record with
 * an allocated block for the content (also in `*content`; NULL for none), which the caller fills
 * from
 * `*pos`. For a source of `dataType` 3 the unused-bits octet, for INTEGER a leading 0x00 before an
 * octet from 0x80 on is skipped. 102: lengths differ; 101: bad length, or BIT STRING without
 * content; 100.
 */
ZACERT_API uint32_t ZAsn1_Low_ReadTagAndLength(const Anybuf *src, const uint8_t **pos, Anybuf **out,
                                               uint8_t **content);

/*
 * ZAsn1_Low_IntToChar: the content octets of a non-negative INTEGER: the shortest big-endian form,
 * with 0x00 in front when the first octet would be 0x80 or above. Octets and count cell are
 * allocated.
 */
ZACERT_API uint32_t ZAsn1_Low_IntToChar(uint32_t value, uint8_t **bytes, uint32_t **countCell);

/* ZAsn1_Low_CharToInt: `count` big-endian octets as a number; of more than four the low 32 bits. */
ZACERT_API uint32_t ZAsn1_Low_CharToInt(const uint8_t *bytes, uint32_t count, uint32_t *value);

/* ZAsn1_Low_TimeIntToChar: a value of 0 to 99 as two digits, not terminated. 103: larger values. */
ZACERT_API uint32_t ZAsn1_Low_TimeIntToChar(uint32_t value, char *twoChars);

/* ZAsn1_Low_TimeCharToInt: two digits as a value; the characters are not checked. */
ZACERT_API uint32_t ZAsn1_Low_TimeCharToInt(const char *twoChars, uint32_t *value);

/*
 * ZAsn1_Low_ItoCTime: the 13 characters YYMMDDHHMMSSZ of a time, in the local zone, and a cell
 * holding 13; both are released with ZAPR_Free. The text is not terminated. 115: a negative time.
 */
ZACERT_API uint32_t ZAsn1_Low_ItoCTime(int32_t time, char **text13, uint32_t **lengthCell);

/*
 * ZAsn1_Low_CtoITime: reads YYMMDDHHMMSS and "Z" or a zero octet as local time; years below 70 are
 * 2000 to 2069. Digits are not checked and `length` is not looked at: 13 octets must be readable.
 * Times from 2038-01-19 on come back as their low 32 bits; read them as unsigned. 104: another
 * thirteenth character; 100: no such time.
 */
ZACERT_API uint32_t ZAsn1_Low_CtoITime(const char *text, uint32_t length, int32_t *time);

/*
 * ZAsn1_Low_WriteLongTime: one element with the identifier octet given and the 13 characters of
 * ZAsn1_Low_ItoCTime. 115: a negative time, so nothing from 2038-01-19 on can be written; 100.
 */
ZACERT_API uint32_t ZAsn1_Low_WriteLongTime(int32_t time, uint32_t identifier, Anybuf **out);

/*
 * ZAsn1_Low_ReadLongTime: the time in an element of any tag, by ZAsn1_Low_CtoITime. A content
 * shorter than twelve octets gives 104.
 */
ZACERT_API uint32_t ZAsn1_Low_ReadLongTime(const Anybuf *element, int32_t *time);

/*
 * ZAsn1_IndefiniteToDefinite: rewrites BER with indefinite lengths (X.690, 8.1.3.6) to definite
 * ones and folds a constructed OCTET STRING inside a rewritten element into a primitive one. Input
 * whose outer length is definite and accounts for all of it is copied unchanged. With an output
 * buffer of `inLen` octets the result is never longer than that: one that would be gives 101 and
 * writes nothing; a NULL buffer asks for the length. 123: malformed, unclosed, nested deeper than
 * 64, or no memory.
 */
ZACERT_API uint32_t ZAsn1_IndefiniteToDefinite(const uint8_t *in, uint32_t inLen, uint8_t *out,
                                               uint32_t *outLen);

/* ---- Primitive types ------------------------------------------------------------------------- */

/* ZAsn1_WriteInteger: INTEGER of an unsigned number, never negative: 128 is 02 02 00 80. */
ZACERT_API uint32_t ZAsn1_WriteInteger(uint32_t value, Anybuf **out);

/* ZAsn1_ReadInteger: the low 32 bits of an INTEGER; an empty content reads as 0. */
ZACERT_API uint32_t ZAsn1_ReadInteger(const Anybuf *in, uint32_t *value);

/*
 * ZAsn1_WriteIntegerArray: INTEGER of big-endian octets; 0x00 is put before a first octet from 0x80
 * on, leading zeros are kept, and no octets give 02 00.
 */
ZACERT_API uint32_t ZAsn1_WriteIntegerArray(const Anybuf *in, Anybuf **out);

/*
 * ZAsn1_ReadIntegerArray: the octets of an INTEGER in the caller's record `dst`, without one 0x00
 * in front of an octet from 0x80 on. What `dst` held is not freed; the caller clears it with
 * ZI_ClearAnybuf. An empty content leaves `data` NULL.
 */
ZACERT_API uint32_t ZAsn1_ReadIntegerArray(const Anybuf *in, Anybuf *dst);

/* ZAsn1_WriteOctetString: OCTET STRING of the record's octets. */
ZACERT_API uint32_t ZAsn1_WriteOctetString(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadOctetString: content octets of any primitive element. */
ZACERT_API uint32_t ZAsn1_ReadOctetString(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteBitString: BIT STRING of the record's octets with its `unusedBits` (0 to 7) in front.
 */
ZACERT_API uint32_t ZAsn1_WriteBitString(const Anybuf *in, Anybuf **out);

/*
 * ZAsn1_ReadBitString: the bits without the octet that counts unused ones; `unusedBits` of the
 * output is that of the input record. 101: no content.
 */
ZACERT_API uint32_t ZAsn1_ReadBitString(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteBoolean: 01 01 FF when `*value` is above 0, else 01 01 00. */
ZACERT_API uint32_t ZAsn1_WriteBoolean(const uint8_t *value, Anybuf **out);

/* ZAsn1_ReadBoolean: the first content octet as it is (255 for a DER TRUE). 101: no content. */
ZACERT_API uint32_t ZAsn1_ReadBoolean(const Anybuf *in, uint8_t *value);

/* ZAsn1_WriteNull: 05 00. */
ZACERT_API uint32_t ZAsn1_WriteNull(Anybuf **out);

/* ZAsn1_WriteEnumerated: ENUMERATED of the record's content octets. */
ZACERT_API uint32_t ZAsn1_WriteEnumerated(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadEnumerated: content octets of an ENUMERATED. */
ZACERT_API uint32_t ZAsn1_ReadEnumerated(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteCharString: PrintableString of the record's octets; the alphabet is not checked. */
ZACERT_API uint32_t ZAsn1_WriteCharString(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadCharString: content octets of a string. */
ZACERT_API uint32_t ZAsn1_ReadCharString(const Anybuf *in, Anybuf **out);

/*
 * ZAsn1_WritePrintableString: PrintableString, or BMPString when `in->dataType` is 30 and the
 * octets are UCS-2 big-endian.
 */
ZACERT_API uint32_t ZAsn1_WritePrintableString(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadPrintableString: content octets of a string; `dataType` tells its real type. */
ZACERT_API uint32_t ZAsn1_ReadPrintableString(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteBmpString: BMPString of UCS-2 big-endian octets; see ZI_Chinese2BmpString. */
ZACERT_API uint32_t ZAsn1_WriteBmpString(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadBmpString: content octets of a string, UCS-2 big-endian; see ZI_BmpString2Chinese. */
ZACERT_API uint32_t ZAsn1_ReadBmpString(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteUTF8String: UTF8String of UTF-8 octets. */
ZACERT_API uint32_t ZAsn1_WriteUTF8String(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadUTF8String: content octets of a string. */
ZACERT_API uint32_t ZAsn1_ReadUTF8String(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteIa5String: IA5String of the record's octets; the alphabet is not checked. */
ZACERT_API uint32_t ZAsn1_WriteIa5String(const Anybuf *in, Anybuf **out);

/* ZAsn1_ReadIa5String: content octets of a string. */
ZACERT_API uint32_t ZAsn1_ReadIa5String(const Anybuf *in, Anybuf **out);

/* ZAsn1_WriteObjectId: OBJECT IDENTIFIER of the content octets in `in->parameters`. */
ZACERT_API uint32_t ZAsn1_WriteObjectId(const ZA_ObjectIdentifier *in, Anybuf **out);

/*
 * ZAsn1_ReadObjectId: a new record with number 0 and the content octets. It is no Anybuf: release
 * it with ZI_ClearAnybuf(&oid->parameters) and then ZAPR_Free(oid).
 */
ZACERT_API uint32_t ZAsn1_ReadObjectId(const Anybuf *in, ZA_ObjectIdentifier **out);

/* ZAsn1_WriteUtcTime: UTCTime; see ZAsn1_Low_WriteLongTime. 115: negative. */
ZACERT_API uint32_t ZAsn1_WriteUtcTime(const int32_t *time, Anybuf **out);

/* ZAsn1_ReadUtcTime: a UTCTime; see ZAsn1_Low_CtoITime. 106: `in->dataType` is not 23; 104. */
ZACERT_API uint32_t ZAsn1_ReadUtcTime(const Anybuf *in, int32_t *time);

/*
 * ZAsn1_WriteGeneralizedTime: tag 24 with the same 13 characters as a UTCTime. Other software
 * refuses this form; it is kept so that the library reads what it wrote.
 */
ZACERT_API uint32_t ZAsn1_WriteGeneralizedTime(const int32_t *time, Anybuf **out);

/*
 * ZAsn1_ReadGeneralizedTime: takes the 13 characters of ZAsn1_WriteGeneralizedTime and the standard
 * form of 15, YYYYMMDDHHMMSSZ, years 1970 to 2106 (low 32 bits). 106: `in->dataType` is not 24;
 * 104.
 */
ZACERT_API uint32_t ZAsn1_ReadGeneralizedTime(const Anybuf *in, int32_t *time);

/* ---- Constructed types and context tags ------------------------------------------------------ */

/* ZAsn1_WriteSequence: SEQUENCE of a chain of whole elements; a NULL chain gives 30 00. */
ZACERT_API uint32_t ZAsn1_WriteSequence(const Anybuf *chain, Anybuf **out);

/*
 * ZAsn1_ReadSequence: the children as a chain of whole elements, NULL for 30 00. 108: no octets or
 * another first octet than 0x30; 102: length; 101: a child runs past the end, or a bad length.
 */
ZACERT_API uint32_t ZAsn1_ReadSequence(const Anybuf *in, Anybuf **chain);

/* ZAsn1_WriteSet: SET of a chain of whole elements in the order given; nothing is sorted. */
ZACERT_API uint32_t ZAsn1_WriteSet(const Anybuf *chain, Anybuf **out);

/* ZAsn1_ReadSet: as ZAsn1_ReadSequence for SET. 106: another tag than 17. */
ZACERT_API uint32_t ZAsn1_ReadSet(const Anybuf *in, Anybuf **chain);

/* ZAsn1_WriteExplicit: the whole element inside a constructed tag [n] (identifier 0xA0 | n). */
ZACERT_API uint32_t ZAsn1_WriteExplicit(const Anybuf *element, uint32_t n, Anybuf **out);

/*
 * ZAsn1_ReadExplicit: takes the outer header off any element. `*inner` holds the content with
 * `dataType` from its first octet (0 when empty), `*tag` the outer tag value (0xA3 for [3], 2 for
 * an INTEGER).
 */
ZACERT_API uint32_t ZAsn1_ReadExplicit(const Anybuf *in, Anybuf **inner, uint32_t *tag);

/*
 * ZAsn1_WriteImplicit: the element's content under tag [n]: 0xA0 | n when its `dataType` is 16 or
 * 17, else 0x80 | n. A BIT STRING (by `dataType`) loses its unused-bits octet and an INTEGER a
 * leading 0x00.
 */
ZACERT_API uint32_t ZAsn1_WriteImplicit(const Anybuf *element, uint32_t n, Anybuf **out);

/*
 * ZAsn1_ReadImplicit: `*tagNumber` is the low five bits of the identifier. A constructed element
 * gives the chain of its children (NULL when empty), a primitive one a single record with its
 * content.
 */
ZACERT_API uint32_t ZAsn1_ReadImplicit(const Anybuf *in, Anybuf **outOrChain, uint32_t *tagNumber);

#ifdef __cplusplus
}
#endif

#endif
