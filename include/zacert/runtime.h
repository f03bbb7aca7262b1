/*
 * runtime.h - trace log, memory and the buffer record's own functions.
 *
 * Example: keep four octets in a record and let them go again.
 *
 *     Anybuf record;
 *     ZI_InitAnybuf(&record);
 *     if (ZI_SetAttributeCharValue(&record, (const uint8_t *)"\x01\x02\x03\x04", 4) == 0) {
 *         use(record.data, record.dataLen);
 *     }
 *     ZI_ClearAnybuf(&record);
 */
#ifndef ZACERT_RUNTIME_H
#define ZACERT_RUNTIME_H

#include <zacert/base.h>

#ifdef __cplusplus
extern "C" {
#endif

/*
 * ZAPR_DebugMessage: appends the line "File <file>; Line <line> # <text>" to the trace log,
 * zacert.log in the folder fixed when the library was built (/var/log unless ZACERT_LOG_DIR said
 * otherwise). Every call opens, appends with one write and closes; nothing switches it off. A log
 * that cannot be opened is silently left alone, so the user of the process needs the right to write
 * it or to create it. `logName` is ignored. Returns 0.
 */
ZACERT_API uint32_t ZAPR_DebugMessage(const char *logName, const char *file, uint32_t line,
                                      const char *text);

/*
 * ZAPR_DebugValMessage: appends "File <file>; Line <line> # <text><v1>,<v2>,<v3>,<v4>" to
 * `logFile`, or to cert.log beside zacert.log when it is NULL. In `text` "%%" stands for "%"; every
 * other octet is written as it is. Returns 0.
 */
ZACERT_API uint32_t ZAPR_DebugValMessage(const char *logFile, const char *file, uint32_t line,
                                         const char *text, int32_t v1, int32_t v2, int32_t v3,
                                         int32_t v4);

/*
 * ZAPR_DebugDumpData: appends `length` octets as "XX " groups, sixteen to a line, each line begun
 * by a newline and `indent` spaces, to `logFile`, or to cert.log when it is NULL. NULL data counts
 * as length 0. Returns 0.
 */
ZACERT_API uint32_t ZAPR_DebugDumpData(const char *logFile, const uint8_t *data, uint32_t length,
                                       uint32_t indent);

/*
 * ZAPR_Malloc: a zero-filled block of `size` octets, or NULL. A size of 0 gives a block of one
 * octet. All memory of the library comes from here. `file` and `line` name the caller and are not
 * written.
 */
ZACERT_API void *ZAPR_Malloc(const char *file, uint32_t line, uint32_t size);

/* ZAPR_Free: releases a block of ZAPR_Malloc or one handed out by the library; NULL does nothing.
 */
ZACERT_API uint32_t ZAPR_Free(void *block);

/* ZAPR_Display_memory: does nothing and returns 0; kept for programs that call it. */
ZACERT_API uint32_t ZAPR_Display_memory(void);

/*
 * ZAsn1_Low_CreateAnyBuf: a new empty record with `bufFlag` 2. The caller releases it with
 * ZI_FreeAnybuf. 100: no memory.
 */
ZACERT_API uint32_t ZAsn1_Low_CreateAnyBuf(Anybuf **out);

/*
 * ZI_InitAnybuf: makes a record that holds nothing yet empty: pointers NULL, numbers 0. Frees
 * nothing; for records embedded in others, before their first use. NULL is ignored. Returns 0.
 */
ZACERT_API uint32_t ZI_InitAnybuf(Anybuf *record);

/*
 * ZI_ClearAnybuf: frees the record's octets and makes it empty. The record itself stays, and so
 * does the chain behind it. NULL is ignored. Returns 0.
 */
ZACERT_API uint32_t ZI_ClearAnybuf(Anybuf *record);

/*
 * ZI_FreeAnybuf: frees the record and every record behind it along `next`, octets included. Only
 * for records the library allocated. NULL is ignored. Returns 0.
 */
ZACERT_API uint32_t ZI_FreeAnybuf(Anybuf *record);

/*
 * ZI_CopyAnybuf: copies all fields of `src` and gives `dst` octets of its own. What `dst` held is
 * not freed. `next` and `prev` still point into the chain of `src`, so a copy must not be released
 * with ZI_FreeAnybuf while that chain is in use. Always 0; when memory runs out `dst` is left
 * without octets. NULL on either side does nothing.
 */
ZACERT_API uint32_t ZI_CopyAnybuf(Anybuf *dst, const Anybuf *src);

/*
 * ZI_SetAttributeCharValue: gives the record a copy of `length` octets, `unusedBits` and `bufFlag`
 * 0 and no neighbours; `dataType` stays. What the record held is not freed: clear it first where it
 * held something. 100: no memory.
 */
ZACERT_API uint32_t ZI_SetAttributeCharValue(Anybuf *record, const uint8_t *bytes, uint32_t length);

/* ZI_CopyAlgorithm: copies number and parameters, the latter as ZI_CopyAnybuf does. */
ZACERT_API uint32_t ZI_CopyAlgorithm(ZA_AlgorithmIdentifier *dst,
                                     const ZA_AlgorithmIdentifier *src);

/*
 * ZI_GetNumberFromImpOrExplicit: the tag number of a context-tagged element: the low five bits of
 * its first octet. Returns 1 when the record has no octets.
 */
ZACERT_API uint32_t ZI_GetNumberFromImpOrExplicit(const Anybuf *record, uint32_t *number);

#ifdef __cplusplus
}
#endif

#endif
