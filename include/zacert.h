/*
 * zacert.h - the whole public interface of the zacert library.
 *
 * What holds for every function unless its own comment says otherwise:
 *
 * Results    0 is success. Failures are the codes of ZACERT_Result; the same code means the same
 *            thing everywhere. A failure changes nothing: outputs stay as they were.
 * Arguments  A NULL pointer where a value is needed gives 108 (ZACERT_GeneralErr). Lengths count
 *            octets. A length of zero never reads the pointer beside it.
 * Buffers    Functions that fill a caller's buffer take a place for the octets and a place for
 *            their number. A NULL buffer asks for the length alone. The buffer's size is not
 *            passed: ask first, allocate, call again. Text is not terminated by a zero octet.
 * Ownership  Setters copy what they are given and getters copy out. What comes back through an
 *            `Anybuf **` belongs to the caller, who releases it with ZI_FreeAnybuf; other memory
 *            handed out is released with ZAPR_Free.
 * Text       Text of callers is GB18030; the library converts it for DER and back.
 * Times      Signed 32-bit seconds since 1970. DER times are read and written in the local zone of
 *            the process although they end in "Z": set TZ=UTC where objects of others are read.
 * Trace      Every function but the runtime's own writes lines to the trace log; see
 *            ZAPR_DebugMessage.
 * Threads    There is no global state. A context or record is used by one thread at a time.
 */
#ifndef ZACERT_H
#define ZACERT_H

#include <zacert/asn1.h>
#include <zacert/base.h>
#include <zacert/callbacks.h>
#include <zacert/cert.h>
#include <zacert/cert_attributes.h>
#include <zacert/crl.h>
#include <zacert/crl_attributes.h>
#include <zacert/crypto.h>
#include <zacert/csr.h>
#include <zacert/csr_attributes.h>
#include <zacert/fast_parse.h>
#include <zacert/identity.h>
#include <zacert/keys.h>
#include <zacert/names.h>
#include <zacert/ocsp.h>
#include <zacert/ocsp_attributes.h>
#include <zacert/ocsp_entries.h>
#include <zacert/ocsp_records.h>
#include <zacert/pkcs12.h>
#include <zacert/pkcs12_bags.h>
#include <zacert/pkcs12_safe.h>
#include <zacert/pkcs7.h>
#include <zacert/pkcs7_attributes.h>
#include <zacert/pkcs7_digested.h>
#include <zacert/pkcs7_encrypted.h>
#include <zacert/pkcs7_enveloped.h>
#include <zacert/pkcs7_recipient.h>
#include <zacert/pkcs7_signed.h>
#include <zacert/pkcs7_signed_enveloped.h>
#include <zacert/pkcs7_signer.h>
#include <zacert/runtime.h>
#include <zacert/text.h>
#include <zacert/verify.h>
#include <zacert/wrappers.h>

#endif
