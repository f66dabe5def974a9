/* Whatever a host gets wrong is an error with a number and words. */
#include "Checks.h"

#include <pthread.h>
#include <qncomm/members.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

static void no_control_is_an_error(void) {
    CHECK_FAILS(NULL, qn_call(NULL, "Clear", NULL, 0, NULL), 5);
    CHECK_FAILS(NULL, qn_bind(NULL, 1, "sim:R7G"), 5);
    CHECK_FAILS(NULL, qn_step(NULL, 0), 5);
    CHECK(qn_fd(NULL) == -1);
    CHECK(qn_free(NULL) == QN_OK);
    qn_cancel(NULL);
}

static void pointers_to_nothing_are_errors(void) {
    qn_control* control = made_control();
    qn_value nowhere = qn_nothing();
    nowhere.type = QN_TEXT;
    nowhere.as.text.length = 3;
    CHECK_FAILS(control, qn_call(control, NULL, NULL, 0, NULL), 5);
    CHECK_FAILS(control, qn_call(control, "KillQN", NULL, 1, NULL), 5);
    CHECK_FAILS(control, qn_call(control, "KillQN", &nowhere, 1, NULL), 5);
    CHECK_FAILS(control, qn_bind(control, 1, NULL), 5);
    CHECK_FAILS(control, qn_bind(control, 17, "sim:R7G"), 5);
    CHECK_FAILS(control, qn_bind(control, 1, "sim:NOPRINTER"), 5);
    CHECK_FAILS(control, qn_on(control, NULL, NULL, NULL), 5);
    CHECK_FAILS(control, qn_on(control, "NoEvent", NULL, NULL), 438);
    CHECK_FAILS(control, qn_call(control, "NoMember", NULL, 0, NULL), 438);
    CHECK_FAILS(control, qn_call(control, "NoClass.Kill", NULL, 0, NULL), 438);
    CHECK_FAILS(control, qn_call(control, "RegSettings.ReadValue", NULL, 0, NULL), 91);
    qn_free(control);
}

static void arguments_of_a_wrong_kind_are_errors(void) {
    qn_control* control = made_control();
    qn_value arguments[] = {qn_text("c:"), qn_text("perhaps"), qn_nothing(), qn_nothing()};
    CHECK_FAILS(control, qn_call(control, "Files", arguments, 2, NULL), 13);
    CHECK_FAILS(control, qn_call(control, "Files", arguments, 4, NULL), 450);
    CHECK_FAILS(control, qn_call(control, "KillQN", NULL, 0, NULL), 449);
    arguments[0] = qn_integer(70000);
    CHECK_FAILS(control, qn_call(control, "Version", arguments, 1, NULL), 6);
    arguments[0].type = 99;
    CHECK_FAILS(control, qn_call(control, "KillQN", arguments, 1, NULL), 5);
    qn_free(control);
}

static void texts_that_cannot_be_are_errors(void) {
    qn_control* control = made_control();
    qn_value text = qn_text("\xC3(");
    CHECK_FAILS(control, qn_call(control, "KillQN", &text, 1, NULL), 5);
    CHECK_FAILS(control, qn_call(control, "CaptureToFile", &text, 1, NULL), 5);
    text = qn_text("\xE4\xBD\xA0"); /* a character that no printer has */
    CHECK_FAILS(control, qn_call(control, "KillQN", &text, 1, NULL), 5);
    text = qn_bytes_of("/tmp/a\0b", 8);
    CHECK_FAILS(control, qn_call(control, "CaptureToFile", &text, 1, NULL), 5);
    qn_free(control);
}

static void lists_that_are_too_long_or_hold_themselves_are_errors(void) {
    enum { million = 1000000 };
    qn_control* control = made_control();
    qn_value* items = calloc(million, sizeof(*items));
    for (size_t i = 0; i < million; ++i)
        items[i] = qn_text("a");
    qn_value list = qn_list_of(items, million);
    CHECK_FAILS(control, qn_call(control, "ProgramLink", &list, 1, NULL), 5);
    list = qn_list_of(items, SIZE_MAX);
    CHECK_FAILS(control, qn_call(control, "ProgramLink", &list, 1, NULL), 5);
    list = qn_list_of(&list, 1);
    CHECK_FAILS(control, qn_call(control, "ProgramLink", &list, 1, NULL), 5);
    free(items);
    qn_free(control);
}

static void* call_from_elsewhere(void* control) {
    CHECK_FAILS(control, qn_call(control, "Clear", NULL, 0, NULL), 5);
    CHECK_FAILS(control, qn_free(control), 5);
    CHECK_TEXT(qn_error_description(control), "The control belongs to another thread.");
    return NULL;
}

static void another_thread_is_refused(void) {
    qn_control* control = made_control();
    pthread_t thread;
    CHECK(pthread_create(&thread, NULL, call_from_elsewhere, control) == 0);
    pthread_join(thread, NULL);
    CHECK(qn_call(control, "Clear", NULL, 0, NULL) == QN_OK);
    qn_free(control);
}

static void a_child_process_is_refused(void) {
    qn_control* control = made_control();
    const pid_t child = fork();
    if (child == 0) _exit(qn_call(control, "Clear", NULL, 0, NULL) == QN_FAILED ? 0 : 1);
    int status = -1;
    CHECK(waitpid(child, &status, 0) == child);
    CHECK(status == 0);
    qn_free(control);
}

static void options_of_an_unknown_size_make_no_control(void) {
    qn_options options = {0};
    CHECK(qn_create(&options) == NULL);
    options.size = 3;
    CHECK(qn_create(&options) == NULL);
}

const test_case bad_input_cases[] = {
    {"no control is an error", no_control_is_an_error},
    {"pointers to nothing are errors", pointers_to_nothing_are_errors},
    {"arguments of a wrong kind are errors", arguments_of_a_wrong_kind_are_errors},
    {"texts that cannot be are errors", texts_that_cannot_be_are_errors},
    {"lists that are too long or hold themselves are errors",
     lists_that_are_too_long_or_hold_themselves_are_errors},
    {"another thread is refused", another_thread_is_refused},
    {"a child process is refused", a_child_process_is_refused},
    {"options of an unknown size make no control", options_of_an_unknown_size_make_no_control},
    {NULL, NULL},
};
