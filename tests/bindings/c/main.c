/* Hosts in C against the virtual printer: all cases, or those whose names begin with the argument.
 */
#include "Checks.h"

#include <qncomm/qncomm.h>

int failures = 0;

qn_control* made_control(void) {
    qn_control* control = qn_create(NULL);
    CHECK(control != NULL);
    CHECK(qn_bind(control, 1, "sim:R7G?baud=115200") == QN_OK);
    return control;
}

static void run_all(const test_case* cases, const char* wanted) {
    for (; cases->name != NULL; ++cases) {
        if (wanted != NULL && strncmp(cases->name, wanted, strlen(wanted)) != 0) continue;
        const int before = failures;
        cases->run();
        printf("%s %s\n", failures == before ? "ok    " : "FAILED", cases->name);
    }
}

int main(int argc, char** argv) {
    const char* wanted = argc > 1 ? argv[1] : NULL;
    run_all(call_cases, wanted);
    run_all(bad_input_cases, wanted);
    run_all(event_cases, wanted);
    run_all(line_cases, wanted);
    run_all(loop_cases, wanted);
    run_all(settings_cases, wanted);
    return failures == 0 ? 0 : 1;
}
