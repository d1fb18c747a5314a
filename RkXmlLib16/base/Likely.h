#ifndef RKXMLLIB16_BASE_LIKELY_H
#define RKXMLLIB16_BASE_LIKELY_H

// What a branch almost always finds. The compiler lays out the other side apart, so that the usual one is a straight
// run of instructions. For branches that are passed for every element or value; others do not need it. Macros, since
// the compiler looks into && and || only there.
#define RKXML_LIKELY(condition) __builtin_expect_with_probability(static_cast<bool>(condition), true, 0.9995)
#define RKXML_UNLIKELY(condition) __builtin_expect_with_probability(static_cast<bool>(condition), false, 0.9995)

#endif
