/* What the tests in C are made of. */
#ifndef QNCOMM_TESTS_CHECKS_H
#define QNCOMM_TESTS_CHECKS_H

#include <stdio.h>
#include <string.h>

/* How many checks have failed. */
extern int failures;

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            ++failures;                                                                            \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition);                        \
        }                                                                                          \
    } while (0)

#define CHECK_TEXT(text, expected)                                                                 \
    do {                                                                                           \
        const char* got = (text);                                                                  \
        if (got == NULL || strcmp(got, (expected)) != 0) {                                         \
            ++failures;                                                                            \
            fprintf(stderr, "%s:%d: \"%s\", expected \"%s\"\n", __FILE__, __LINE__,                \
                    got ? got : "(null)", (expected));                                             \
        }                                                                                          \
    } while (0)

#define CHECK_FAILS(control, call, number)                                                         \
    do {                                                                                           \
        CHECK((call) == QN_FAILED);                                                                \
        CHECK(qn_error_number(control) == (number));                                               \
        CHECK(qn_error_description(control)[0] != '\0');                                           \
    } while (0)

/* One case: what it proves, and how. */
typedef struct test_case {
    const char* name;
    void (*run)(void);
} test_case;

extern const test_case call_cases[];
extern const test_case bad_input_cases[];
extern const test_case event_cases[];
extern const test_case line_cases[];
extern const test_case loop_cases[];
extern const test_case settings_cases[];

struct qn_control;
/* A control whose port is a virtual printer. */
struct qn_control* made_control(void);

#endif
