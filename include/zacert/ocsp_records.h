/*
 * ocsp_records.h - what OCSP responses are made of (RFC 6960), as plain records of the caller's and
 * functions that write and read them. See ocsp.h for what differs from RFC 6960.
 *
 * Set every record to zeros first. Those that write read the record and hand out a new one in
 * `*out`, released with ZI_FreeAnybuf. Those that read copy into the record, which keeps what was
 * filled in before a failure; release it with ZI_ClearAnybuf for each value, ZI_FreeAnybuf for each
 * chain, ZI_FreeName for names and ZI_FreeOCSPExtension.
 *
 * Example: why a certificate was revoked.
 *
 *     ZA_OCSP_CERTSTATUS status = {0};
 *     if (ZI_DecodeCertStatus(&status, field) == 0 && status.revokedFlag && status.reasonFlag) {
 *         use(status.revocationTime.value, status.reason.data, status.reason.dataLen);
 *     }
 *     ZI_ClearAnybuf(&status.reason);
 *     ZI_ClearAnybuf(&status.unknown);
 */
#ifndef ZACERT_OCSP_RECORDS_H
#define ZACERT_OCSP_RECORDS_H

#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/names.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Records --------------------------------------------------------------------------------- */

/*
 * ZA_OCSP_TIME: seconds since 1970, and whether they stand there as UTCTime (1) or as
 * GeneralizedTime (0).
 */
typedef struct ZA_OCSP_TIME {
    int32_t value;
    uint32_t utcFlag;
} ZA_OCSP_TIME;

/*
 * ZA_OCSP_RESPONDERID: who answers: by name, as entries (`name`) or as DER (`nameDer`), by the hash
 * of a key, to be computed from `publicKey` or given (`keyHash`), or by both. `hashBufLen` is the
 * room that `hashFunc` gets for it; `hashArg` is what it is called with, NULL where that is empty.
 * A decoded name is there in both forms: clear one of the flags before the record is encoded again.
 */
typedef struct ZA_OCSP_RESPONDERID {
    uint8_t nameRecordFlag, keyHashComputeFlag, keyHashGivenFlag, nameDerFlag;
    ZA_CryptFunc hashFunc;
    uint8_t *publicKey;
    uint32_t publicKeyLen;
    uint32_t hashBufLen;
    ZI_Name name;
    Anybuf nameDer;
    Anybuf keyHash;
    Anybuf hashArg;
} ZA_OCSP_RESPONDERID;

/*
 * ZA_OCSP_CERTSTATUS: one of three flags, and what belongs to it: for a revoked certificate the
 * time and, with `reasonFlag`, the content octets of the reason; for an unknown one the octets that
 * were written.
 */
typedef struct ZA_OCSP_CERTSTATUS {
    uint8_t goodFlag, revokedFlag, unknownFlag, reasonFlag;
    ZA_OCSP_TIME revocationTime;
    Anybuf reason;
    Anybuf unknown;
} ZA_OCSP_CERTSTATUS;

/*
 * ZA_OCSP_SIGNATURE: what a signature is made from: content octets of the algorithm, a function
 * with its argument, the octets to be signed and, with `certsFlag`, certificates one behind the
 * other. The function's result comes into `signature`.
 */
typedef struct ZA_OCSP_SIGNATURE {
    Anybuf algorithm;
    ZA_CryptFunc signFunc;
    Anybuf signArg;
    Anybuf toSign;
    uint8_t certsFlag;
    Anybuf certs;
    Anybuf signature;
} ZA_OCSP_SIGNATURE;

/*
 * ZA_OCSP_CRLID: a reference to a revocation list: where it is, its number, its time, each with a
 * flag, content octets of the extension (1.3.6.1.5.5.7.48.1.3) and whether it is critical.
 */
typedef struct ZA_OCSP_CRLID {
    uint8_t urlFlag, numFlag, timeFlag;
    Anybuf oid;
    Anybuf url;
    uint32_t num;
    ZA_OCSP_TIME time;
    uint8_t critical;
} ZA_OCSP_CRLID;

/*
 * ZA_OCSP_EXTENSION: the extensions of a message, each with a flag, content octets of its
 * identifier, its value and whether it is critical. `acceptable` is a chain of records with content
 * octets of types.
 */
typedef struct ZA_OCSP_EXTENSION {
    uint8_t nonceFlag, crlIdFlag, acceptableFlag, cutoffFlag;
    Anybuf nonceOid, nonce;
    ZA_OCSP_CRLID crlId;
    Anybuf acceptableOid;
    Anybuf *acceptable;
    Anybuf cutoffOid;
    ZA_OCSP_TIME cutoff;
    uint8_t nonceCritical, acceptableCritical, cutoffCritical;
    uint8_t crlEntryFlag, crlEntryCritical, serviceFlag, serviceCritical;
    Anybuf crlEntryOid, crlEntry, serviceOid, serviceIssuer, serviceLocator;
} ZA_OCSP_EXTENSION;

/*
 * ZA_OCSP_RESPONSEDATA: ResponseData. `responses` is a chain of records with the DER of a
 * SingleResponse each.
 */
typedef struct ZA_OCSP_RESPONSEDATA {
    uint8_t versionFlag, extensionsFlag;
    uint32_t version;
    ZA_OCSP_RESPONDERID responderId;
    ZA_OCSP_TIME producedAt;
    Anybuf *responses;
    ZA_OCSP_EXTENSION extensions;
} ZA_OCSP_RESPONSEDATA;

/*
 * ZA_OCSP_BASICRESPONSE: BasicOCSPResponse. `der` is a copy of what was decoded: its first field is
 * what the signature covers.
 */
typedef struct ZA_OCSP_BASICRESPONSE {
    ZA_OCSP_RESPONSEDATA data;
    Anybuf algorithm;
    ZA_CryptFunc signFunc;
    Anybuf signArg;
    Anybuf signature;
    uint8_t certsFlag;
    Anybuf certs;
    Anybuf der;
} ZA_OCSP_BASICRESPONSE;

/* ---- Functions ------------------------------------------------------------------------------- */

/*
 * ZI_EncodeResponseId: SEQUENCE { Name OPTIONAL, OCTET STRING OPTIONAL }. 121: neither, or a hash
 * both given and to be computed, or no function; 108: both forms of the name, or the function
 * claims more octets than it had room for, or none; its own code.
 */
ZACERT_API uint32_t ZI_EncodeResponseId(ZA_OCSP_RESPONDERID *record, Anybuf **out);

/* ZI_DecodeResponseId: reads one. */
ZACERT_API uint32_t ZI_DecodeResponseId(ZA_OCSP_RESPONDERID *record, Anybuf *in);

/*
 * ZI_EncodeCertStatus: always refuses (121): a status is written with the whole SingleResponse
 * (ocsp_entries.h).
 */
ZACERT_API uint32_t ZI_EncodeCertStatus(ZA_OCSP_CERTSTATUS *record, Anybuf **out);

/*
 * ZI_DecodeCertStatus: reads the status of a SingleResponse, or a SEQUENCE around it. 121: none of
 * the three.
 */
ZACERT_API uint32_t ZI_DecodeCertStatus(ZA_OCSP_CERTSTATUS *record, Anybuf *in);

/*
 * ZI_EncodeOCSPSignature: signs and writes SEQUENCE { OBJECT IDENTIFIER, OCTET STRING, [0] SEQUENCE
 * OPTIONAL }. 121: no function or no algorithm; 107: it claims more than 4096 octets, or nothing;
 * its own code.
 */
ZACERT_API uint32_t ZI_EncodeOCSPSignature(ZA_OCSP_SIGNATURE *record, Anybuf **out);

/* ZI_EncodeOCSPCrlId: the whole extension. 121: no identifier, or nothing in it. */
ZACERT_API uint32_t ZI_EncodeOCSPCrlId(ZA_OCSP_CRLID *record, Anybuf **out);

/* ZI_DecodeOCSPCrlId: reads it. */
ZACERT_API uint32_t ZI_DecodeOCSPCrlId(ZA_OCSP_CRLID *record, Anybuf *in);

/* ZI_InitOCSPExtension: makes a record empty, whatever it held: nothing is released. */
ZACERT_API uint32_t ZI_InitOCSPExtension(ZA_OCSP_EXTENSION *record);

/* ZI_FreeOCSPExtension: releases what a record holds and makes it empty. */
ZACERT_API uint32_t ZI_FreeOCSPExtension(ZA_OCSP_EXTENSION *record);

/*
 * ZI_EncodeOCSPExtension: SEQUENCE OF Extension, in the order acceptable responses, archive cutoff,
 * CRL reference, nonce, CRL entry, service locator. 121: a flag without identifier or value.
 */
ZACERT_API uint32_t ZI_EncodeOCSPExtension(ZA_OCSP_EXTENSION *record, Anybuf **out);

/*
 * ZI_DecodeOCSPExtension: reads them, with their values inside an OCTET STRING or bare; those it
 * does not know are passed over.
 */
ZACERT_API uint32_t ZI_DecodeOCSPExtension(ZA_OCSP_EXTENSION *record, Anybuf *in);

/* ZI_EncodeResponseData: ResponseData (RFC 6960, 4.2.1). 121: a missing argument. */
ZACERT_API uint32_t ZI_EncodeResponseData(ZA_OCSP_RESPONSEDATA *record, Anybuf **out);

/* ZI_DecodeResponseData: reads it. 121: a field is missing. */
ZACERT_API uint32_t ZI_DecodeResponseData(ZA_OCSP_RESPONSEDATA *record, Anybuf *in);

/*
 * ZI_EncodeBasicResponse: signs and writes BasicOCSPResponse with a bare OBJECT IDENTIFIER for the
 * algorithm and the signature in an OCTET STRING. 121: no function; 107, or its own code.
 */
ZACERT_API uint32_t ZI_EncodeBasicResponse(ZA_OCSP_BASICRESPONSE *record, Anybuf **out);

/* ZI_DecodeBasicResponse: reads it. 121: a field is missing. */
ZACERT_API uint32_t ZI_DecodeBasicResponse(ZA_OCSP_BASICRESPONSE *record, Anybuf *in);

#ifdef __cplusplus
}
#endif

#endif
