/* The control's own loop, those of hosts, and the end of what runs. */
#include "Checks.h"

#include <poll.h>
#include <pthread.h>
#include <qncomm/members.h>
#include <unistd.h>

static void* cancel_it(void* control) {
    qn_cancel(control);
    return NULL;
}

/* A handler that has another thread cancel what runs. */
static int cancel_from_elsewhere(void* control, qn_value* arguments, size_t count) {
    pthread_t thread;
    (void)arguments;
    (void)count;
    CHECK(pthread_create(&thread, NULL, cancel_it, control) == 0);
    pthread_join(thread, NULL);
    return 0;
}

static void another_thread_cancels_what_runs(void) {
    qn_control* control = made_control();
    CHECK(qn_on(control, "StatusEvent", cancel_from_elsewhere, control) == QN_OK);
    int found = 1;
    const int status = qn_DoAutoconnect(control, &found);
    CHECK(status == QN_CANCELLED || !found); /* a search ends politely when it hears it in time */
    CHECK(qn_on(control, "StatusEvent", NULL, NULL) == QN_OK);
    CHECK(qn_PrinterType(control, NULL) == QN_OK);
    qn_free(control);
}

static void cancel_here(void* control) {
    qn_cancel(control);
}

static void quit_here(void* control) {
    CHECK(qn_quit(control) == QN_OK);
}

/* Shown and with a line typed, so that something will come. */
static qn_control* typed_control(void) {
    qn_control* control = made_control();
    size_t taken = 0;
    CHECK(qn_PrinterType(control, NULL) == QN_OK);
    CHECK(qn_show(control, 1) == QN_OK);
    CHECK(qn_type_bytes(control, "PRINT 6*7\r", 10, &taken) == QN_OK && taken == 10);
    return control;
}

static void a_cancel_ends_the_loop(void) {
    qn_control* control = typed_control();
    CHECK(qn_on_screen(control, cancel_here, control) == QN_OK);
    CHECK(qn_run(control) == QN_CANCELLED);
    CHECK(qn_error_number(control) == 18);
    CHECK(qn_on_screen(control, NULL, NULL) == QN_OK);
    CHECK(qn_step(control, 0) == QN_OK);
    qn_free(control);
}

static void a_host_without_a_loop_runs_the_controls(void) {
    qn_control* control = typed_control();
    CHECK(qn_on_screen(control, quit_here, control) == QN_OK);
    CHECK(qn_run(control) == QN_OK);
    CHECK(qn_show(control, 0) == QN_OK);
    qn_free(control);
}

static void count_it(void* user) {
    ++*(int*)user;
}

static void another_loop_is_woken_by_the_descriptor(void) {
    int told = 0;
    qn_control* control = typed_control();
    struct pollfd entry = {qn_fd(control), POLLIN, 0};
    CHECK(entry.fd >= 0);
    CHECK(qn_on_screen(control, count_it, &told) == QN_OK);
    while (told == 0) {
        CHECK(poll(&entry, 1, -1) == 1);
        CHECK(qn_dispatch(control) == QN_OK);
    }
    qn_free(control);
}

static void signalled(void* user) {
    ++*(int*)user;
}

static void a_signal_handler_wakes_the_control(void) {
    int told = 0;
    qn_control* control = made_control();
    CHECK(qn_on_signal(control, signalled, &told) == QN_OK);
    CHECK(write(qn_wake_fd(control), "x", 1) == 1);
    while (told == 0)
        CHECK(qn_step(control, 3600000) == QN_OK);
    qn_free(control);
}

static int text_of_row(qn_control* control, int row, char* text) {
    qn_cell cells[40];
    if (qn_screen_row(control, row, cells, 40) != QN_OK) return 0;
    for (int i = 0; i < 40; ++i)
        text[i] = (char)cells[i].character;
    text[40] = '\0';
    return 1;
}

static void a_host_draws_the_terminal_from_its_cells(void) {
    qn_control* control = typed_control();
    qn_damage damage = {0};
    qn_screen screen = {0};
    char text[41];
    int answered = 0;
    CHECK(qn_screen_damage(control, &damage) == QN_OK && damage.count > 0);
    while (!answered) {
        CHECK(qn_step(control, 1000) == QN_OK);
        CHECK(qn_screen_damage(control, &damage) == QN_OK);
        for (size_t i = 0; i < damage.count; ++i) {
            CHECK(text_of_row(control, damage.rows[i], text));
            answered = answered || strncmp(text, "42 ", 3) == 0;
        }
    }
    CHECK(qn_screen_state(control, &screen) == QN_OK);
    CHECK(screen.rows == 300 && screen.columns == 300 && screen.cursor_visible);
    CHECK(screen.cursor_row > 1 && screen.cursor_column >= 1);
    CHECK_FAILS(control, qn_screen_row(control, 301, NULL, 0), 9);
    CHECK_FAILS(control, qn_screen_row(control, 1, NULL, 1), 5);
    CHECK_FAILS(control, qn_screen_state(control, NULL), 5);
    qn_free(control);
}

static void cells_have_the_colours_of_the_control(void) {
    qn_control* control = made_control();
    qn_cell cell = {0};
    CHECK(qn_SetBackColor(control, 0x102030) == QN_OK);
    CHECK(qn_SetForeColor(control, 0x405060) == QN_OK);
    CHECK(qn_screen_row(control, 1, &cell, 1) == QN_OK);
    CHECK(cell.character == ' ' && cell.style == 0);
    CHECK(cell.back == 0x102030 && cell.fore == 0x405060);
    qn_free(control);
}

const test_case loop_cases[] = {
    {"another thread cancels what runs", another_thread_cancels_what_runs},
    {"a cancel ends the loop", a_cancel_ends_the_loop},
    {"a host without a loop runs the control's", a_host_without_a_loop_runs_the_controls},
    {"another loop is woken by the descriptor", another_loop_is_woken_by_the_descriptor},
    {"a signal handler wakes the control", a_signal_handler_wakes_the_control},
    {"a host draws the terminal from its cells", a_host_draws_the_terminal_from_its_cells},
    {"cells have the colours of the control", cells_have_the_colours_of_the_control},
    {NULL, NULL},
};
