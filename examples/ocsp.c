/*
 * ocsp - asks whether a certificate is good, answers that it is, and reads the answer.
 *
 *     ocsp CA_KEY CA_CERTIFICATE CERTIFICATE REQUEST RESPONSE
 *
 * CA_KEY is an RSAPrivateKey in DER (openssl rsa -traditional -outform DER); the certificates are in
 * DER too. The request is one that everybody reads:
 *
 *     openssl ocsp -reqin REQUEST -req_text
 *
 * The response is not: only those who use this library read it, and openssl says "Error parsing
 * response".
 */
#include "example.h"

#include <time.h>

#define SHA1 "1.3.14.3.2.26"
#define SHA256_WITH_RSA "1.2.840.113549.1.1.11"
#define BASIC_RESPONSE "1.3.6.1.5.5.7.48.1.1"
#define NONCE_LEN 16

/* Digests are told by numbers. SHA-1 names the certificate: every responder knows that. */
static const int32_t kSha1 = 7;
static const int32_t kSha256 = 9;

static octets taken(Anybuf *record) {
    octets made = room_for(record->dataLen);
    memcpy(made.data, record->data, record->dataLen);
    ZI_FreeAnybuf(record);
    return made;
}

static octets request_entry(octets ca, octets certificate) {
    const setter set = ZA_OCSP_SetRequestListAttributeChar;
    Anybuf *made = NULL;
    void *entry = NULL;
    CALL(ZA_OCSP_CreateEncodeRequestList(&entry));
    CALL(ZA_OCSP_SetRequestListHashFunc(entry, ZA_DigestFunc_Ref, (const uint8_t *)&kSha1,
                                        sizeof kSha1));
    set_oid(set, entry, OCSP_REQUESTLIST_HASHALGO, SHA1);
    set_octets(set, entry, OCSP_REQUESTLIST_ISSUERNAME, of_certificate(ca, CERT_SUBJECT_DERDN));
    set_octets(set, entry, OCSP_REQUESTLIST_ISSUERKEY,
               of_certificate(ca, CERT_SUBJECTPUBLICKEYINFO));
    set_octets(set, entry, OCSP_REQUESTLIST_SERIALNUMBER,
               of_certificate(certificate, CERT_SERIALNUMBER));
    CALL(ZA_OCSP_EncodeRequestList(entry, &made));
    CALL(ZA_OCSP_DestroyEncodeRequestList(entry));
    return taken(made);
}

static octets request(octets entry) {
    const uint32_t count = NONCE_LEN;
    /* A nonce is an OCTET STRING; the extension's own comes with the extension. */
    uint8_t nonce[2 + NONCE_LEN] = {ZA_DER_ID_OCTETSTRING, NONCE_LEN};
    void *made = NULL;
    CALL(ZA_PKCS7_GenerateBytes(nonce + 2, &count));
    CALL(ZA_OCSP_CreateEncodeRequest(&made));
    CALL(ZA_OCSP_SetRequestSingleRequest(made, entry.data, entry.len));
    CALL(ZA_OCSP_SetRequestAttributeChar(made, OCSP_EXT_NONCE, nonce, sizeof nonce));
    octets der = encoded(ZA_OCSP_EncodeRequest, made);
    CALL(ZA_OCSP_DestoryEncodeRequest(made));
    return der;
}

static octets cert_id_of(octets entry) {
    void *decoded = NULL;
    CALL(ZA_OCSP_CreateDecodeRequestList(&decoded));
    CALL(ZA_OCSP_DecodeRequestList(decoded, entry.data, entry.len));
    octets id = attribute_of(decoded, ZA_OCSP_GetRequestListAttributeChar, OCSP_REQUESTLIST_CERTID);
    CALL(ZA_OCSP_DestroyDecodeRequestList(decoded));
    return id;
}

static octets response_entry(octets id) {
    Anybuf *made = NULL;
    void *entry = NULL;
    CALL(ZA_OCSP_CreateEncodeResponseList(&entry));
    CALL(ZA_OCSP_SetResponseListAttributeChar(entry, OCSP_RESPONDERLIST_CERTID, id.data, id.len));
    CALL(ZA_OCSP_SetResponseListAttributeInt(entry, OCSP_RESPONDERLIST_THISUPDATE,
                                             (int32_t)time(NULL)));
    CALL(ZA_OCSP_SetResponseList_CertStatusGood(entry));
    CALL(ZA_OCSP_EncodeResponseList(entry, &made));
    CALL(ZA_OCSP_DestroyEncodeResponseList(entry));
    return taken(made);
}

/* Signs ResponseData. The library offers 4096 octets. */
static int32_t sign(const uint8_t *in, uint32_t inLen, uint8_t *out, uint32_t *outLen,
                    void *context) {
    return (int32_t)ZA_PKCS7_SignedData(kSha256, in, (int32_t)inLen, out, outLen, context);
}

/* The nonce of the request cannot be repeated: a response has no setter for extensions. */
static octets response(octets id, octets ca, const char *key_file) {
    const setter set = ZA_OCSP_SetResponseAttributeChar;
    const uint8_t successful = 0;
    ZA_RSArefPrivateKey key;
    void *made = NULL;
    octets entry = response_entry(id);
    CALL(ZA_OCSP_CreateEncodeResponse(&made));
    CALL(set(made, OCSP_RESPONSE_STATUS, &successful, sizeof successful));
    set_oid(set, made, OCSP_RESPONSETYPE, BASIC_RESPONSE);
    set_octets(set, made, OCSP_RESPONSE_RESPONDERID_DN, of_certificate(ca, CERT_SUBJECT_DERDN));
    CALL(ZA_OCSP_SetResponseAttributeInt(made, OCSP_RESPONSE_PRODUCEDAT, (int32_t)time(NULL)));
    CALL(ZA_OCSP_SetResponseSingleResponse(made, entry.data, entry.len));
    set_oid(set, made, OCSP_RESPONSE_SIGNALGO, SHA256_WITH_RSA);
    read_key(key_file, &key);
    CALL(ZA_OCSP_SetResponseSignFunc(made, sign, (const uint8_t *)&key, sizeof key));
    explicit_bzero(&key, sizeof key);
    octets der = encoded(ZA_OCSP_EncodeResponse, made);
    CALL(ZA_OCSP_DestoryEncodeResponse(made));
    free(entry.data);
    return der;
}

/*
 * Whoever relies on an answer verifies its signature first: ZI_DecodeBasicResponse gives it with
 * the octets that it covers.
 */
static const char *status_of(octets id, octets der) {
    static const char *const kStatus[] = {"", "good", "revoked", "unknown"};
    octets entry = {NULL, 0};
    uint32_t status = 0;
    void *response = NULL;
    void *decoded = NULL;
    CALL(ZA_OCSP_CreateDecodeResponse(&response));
    CALL(ZA_OCSP_DecodeResponse(response, der.data, der.len));
    CALL(ZA_OCSP_GetResponseSingleResponse(response, NULL, &entry.len, 1));
    entry = room_for(entry.len);
    CALL(ZA_OCSP_GetResponseSingleResponse(response, entry.data, &entry.len, 1));
    CALL(ZA_OCSP_CreateDecodeResponseList(&decoded));
    CALL(ZA_OCSP_DecodeResponseList(decoded, entry.data, entry.len));
    octets named =
        attribute_of(decoded, ZA_OCSP_GetResponseListAttributeChar, OCSP_RESPONDERLIST_CERTID);
    check(named.len == id.len && memcmp(named.data, id.data, id.len) == 0, "the CertID");
    CALL(ZA_OCSP_GetResponseListCertSatus(decoded, &status));
    CALL(ZA_OCSP_DestroyDecodeResponseList(decoded));
    CALL(ZA_OCSP_DestoryDecodeResponse(response));
    free(named.data);
    free(entry.data);
    return kStatus[status];
}

int main(int argc, char **argv) {
    if (argc != 6) {
        fprintf(stderr, "usage: ocsp CA_KEY CA_CERTIFICATE CERTIFICATE REQUEST RESPONSE\n");
        return 2;
    }
    octets ca = read_file(argv[2]);
    octets certificate = read_file(argv[3]);
    octets entry = request_entry(ca, certificate);
    octets id = cert_id_of(entry);
    octets asked = request(entry);
    octets answer = response(id, ca, argv[1]);
    write_file(argv[4], asked);
    write_file(argv[5], answer);
    printf("%s\n", status_of(id, answer));

    free(answer.data);
    free(asked.data);
    free(id.data);
    free(entry.data);
    free(certificate.data);
    free(ca.data);
    return 0;
}
