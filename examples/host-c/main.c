/* The smallest program in C with the control in it: which printer is there, and what is on it. */
#include <qncomm/members.h>
#include <stdio.h>

static int failed(qn_control* control) {
    fprintf(stderr, "%s: %s\n", qn_error_source(control), qn_error_description(control));
    return 1;
}

int main(int argc, char** argv) {
    qn_control* control = qn_create(NULL);
    if (qn_bind(control, 1, argc > 1 ? argv[1] : "/dev/ttyUSB0") != QN_OK) return failed(control);

    int found = 0; /* the search tries all rates and formats */
    const char* type = NULL;
    if (qn_DoAutoconnect(control, &found) != QN_OK) return failed(control);
    if (!found) return fprintf(stderr, "No printer was found.\n"), 1;
    if (qn_PrinterType(control, &type) != QN_OK) return failed(control);
    printf("%s\n", type);

    qn_value files;
    if (qn_Files(control, "c:", 0, 0, &files) != QN_OK) return failed(control);
    for (size_t i = 0; i < files.as.list.count; ++i)
        printf("%s, %d bytes\n", qn_field_of(&files.as.list.items[i], "Name")->as.text.bytes,
               (int)qn_field_of(&files.as.list.items[i], "Size")->as.integer);
    return qn_free(control);
}
