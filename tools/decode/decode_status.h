/* What the C decoders answer. They are C because libpng and libjpeg leave them
 * by longjmp, which must not pass over a C++ object. */
#ifndef ZUQEL_TOOLS_DECODE_DECODE_STATUS_H_
#define ZUQEL_TOOLS_DECODE_DECODE_STATUS_H_

enum DecodeStatus { kDecodeDone, kDecodeTruncated, kDecodeDamaged };

/* Room for the decoder's own words on what is damaged. */
enum { kDecodeReasonSize = 256 };

#endif /* ZUQEL_TOOLS_DECODE_DECODE_STATUS_H_ */
