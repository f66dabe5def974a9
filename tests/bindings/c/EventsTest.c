/* What the control tells its host while it works. */
#include "Checks.h"

#include <qncomm/members.h>

typedef struct heard {
    qn_control* control;
    int calls;
    int opened;
    int stops; /* what the handler returns */
    int status;
} heard;

static int on_port(void* user, qn_value* arguments, size_t count) {
    heard* into = user;
    CHECK(count == 1 && arguments[0].type == QN_BOOLEAN);
    ++into->calls;
    into->opened += arguments[0].as.boolean;
    return 0;
}

static int on_status(void* user, qn_value* arguments, size_t count) {
    heard* into = user;
    CHECK(count == 3 && arguments[0].type == QN_TEXT && arguments[2].type == QN_BOOLEAN);
    ++into->calls;
    return into->stops;
}

static int cancel_by_argument(void* user, qn_value* arguments, size_t count) {
    CHECK(count == 3);
    ++((heard*)user)->calls;
    arguments[2] = qn_boolean(1);
    return 0;
}

static void the_port_tells_when_it_opens_and_closes(void) {
    heard into = {0};
    qn_control* control = made_control();
    CHECK(qn_on(control, "PortStateEvent", on_port, &into) == QN_OK);
    CHECK(qn_PrinterType(control, NULL) == QN_OK);
    CHECK(into.opened > 0 && into.calls == 2 * into.opened);
    const int before = into.calls;
    CHECK(qn_on(control, "PortStateEvent", NULL, NULL) == QN_OK);
    CHECK(qn_FirmwareVersion(control, NULL) == QN_OK);
    CHECK(into.calls == before);
    qn_free(control);
}

static void a_handler_stops_a_long_operation(void) {
    qn_event_handler handlers[] = {on_status, cancel_by_argument};
    for (int i = 0; i < 2; ++i) {
        heard into = {0};
        into.stops = i == 0;
        qn_control* control = made_control();
        int found = 1;
        CHECK(qn_on(control, "StatusEvent", handlers[i], &into) == QN_OK);
        qn_DoAutoconnect(control, &found);
        CHECK(into.calls > 0);
        CHECK(found == 0);
        qn_free(control);
    }
}

static int call_within(void* user, qn_value* arguments, size_t count) {
    heard* into = user;
    int32_t colour = 0;
    (void)arguments;
    (void)count;
    ++into->calls;
    CHECK(qn_BackColor(into->control, &colour) == QN_OK);
    return 0;
}

static void a_handler_may_call_the_control(void) {
    heard into = {0};
    into.control = made_control();
    const char* type = NULL;
    CHECK(qn_on(into.control, "PortStateEvent", call_within, &into) == QN_OK);
    CHECK(qn_PrinterType(into.control, &type) == QN_OK);
    CHECK_TEXT(type, "R7G");
    CHECK(into.calls > 0);
    qn_free(into.control);
}

static int free_within(void* user, qn_value* arguments, size_t count) {
    heard* into = user;
    (void)arguments;
    (void)count;
    if (into->calls++ > 0) return 0;
    CHECK(qn_free(into->control) == QN_OK);
    CHECK_FAILS(into->control, qn_call(into->control, "Clear", NULL, 0, NULL), 5);
    return 0;
}

static void a_control_may_be_freed_in_its_own_event(void) {
    const char* const events[] = {"PortStateEvent", "StatusEvent"};
    for (int i = 0; i < 2; ++i) {
        heard into = {0};
        into.control = made_control();
        CHECK(qn_on(into.control, events[i], free_within, &into) == QN_OK);
        CHECK((i == 0 ? qn_PrinterType(into.control, NULL) : qn_DoAutoconnect(into.control, NULL))
              == QN_FREED);
        CHECK(into.calls == 1);
    }
}

static int answer(void* user, const qn_box* box) {
    ++((heard*)user)->calls;
    CHECK(box->text[0] != '\0' && box->title[0] != '\0');
    return 1;
}

static void a_box_is_shown_by_the_host(void) {
    heard into = {0};
    qn_control* control = made_control();
    qn_value key = qn_text("nokey");
    CHECK(qn_on_box(control, answer, &into) == QN_OK);
    CHECK(qn_call(control, "PressToolbarKey", &key, 1, NULL) == QN_OK);
    CHECK(into.calls == 1);
    qn_free(control);
}

static void trace(void* user, int64_t ms, int kind, qn_bytes bytes) {
    heard* into = user;
    CHECK(ms >= 0 && kind >= 0 && kind <= 2 && bytes.bytes != NULL);
    if (into->calls++ == 0)
        CHECK_FAILS(into->control, qn_call(into->control, "Clear", NULL, 0, NULL), 5);
}

static void the_line_is_traced(void) {
    heard into = {0};
    into.control = made_control();
    CHECK(qn_on_trace(into.control, trace, &into) == QN_OK);
    CHECK(qn_PrinterType(into.control, NULL) == QN_OK);
    CHECK(into.calls > 2);
    qn_free(into.control);
}

const test_case event_cases[] = {
    {"the port tells when it opens and closes", the_port_tells_when_it_opens_and_closes},
    {"a handler stops a long operation", a_handler_stops_a_long_operation},
    {"a handler may call the control", a_handler_may_call_the_control},
    {"a control may be freed in its own event", a_control_may_be_freed_in_its_own_event},
    {"a box is shown by the host", a_box_is_shown_by_the_host},
    {"the line is traced", the_line_is_traced},
    {NULL, NULL},
};
