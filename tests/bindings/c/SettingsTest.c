/* Where settings are kept. */
#include "Checks.h"

#include <qncomm/members.h>
#include <stdlib.h>
#include <unistd.h>

typedef struct kept {
    char key[32];
    char value[64];
    int refuses;
} kept;

static int read_kept(void* user, const char* section, const char* key, qn_bytes* value) {
    kept* in = user;
    CHECK(section[0] != '\0');
    if (strcmp(key, in->key) != 0) return 0;
    value->bytes = in->value;
    value->length = strlen(in->value);
    return 1;
}

static int write_kept(void* user, const char* section, const char* key, qn_bytes value) {
    kept* in = user;
    CHECK(section[0] != '\0');
    if (in->refuses || value.length >= sizeof(in->value)) return 1;
    snprintf(in->key, sizeof(in->key), "%s", key);
    snprintf(in->value, sizeof(in->value), "%.*s", (int)value.length, value.bytes);
    return 0;
}

static void a_host_keeps_settings_its_own_way(void) {
    kept in = {0};
    const qn_store_functions functions = {read_kept, write_kept};
    qn_control* control = made_control();
    qn_settings* store = qn_settings_host(&functions, &in);
    const char* value = NULL;
    CHECK(qn_RegSettings_WriteValue(control, store, "Settings", "Colour", "red") == QN_OK);
    CHECK_TEXT(in.value, "red");
    CHECK(qn_RegSettings_ReadValue(control, store, "Settings", "Colour", "none", &value) == QN_OK);
    CHECK_TEXT(value, "red");
    CHECK(qn_RegSettings_ReadValue(control, store, "Settings", "Size", "none", &value) == QN_OK);
    CHECK_TEXT(value, "none");
    in.refuses = 1;
    CHECK_FAILS(control, qn_RegSettings_WriteValue(control, store, "Settings", "Colour", "blue"),
                75);
    CHECK(qn_settings_host(NULL, &in) == NULL);
    qn_settings_free(store);
    qn_free(control);
}

static void a_control_takes_a_store_and_gives_it_back(void) {
    qn_control* control = made_control();
    qn_settings* store = qn_settings_memory();
    qn_value same = qn_nothing();
    const char* value = NULL;
    CHECK(qn_RegSettings_WriteValue(control, store, "Settings", "Commport", "3") == QN_OK);
    CHECK(qn_SetRegSettings(control, store) == QN_OK);
    qn_settings_free(store); /* the control keeps it */
    CHECK(qn_RegSettings(control, &same) == QN_OK && same.type == QN_SETTINGS);
    qn_settings* kept_longer = qn_settings_keep(same.as.settings);
    CHECK(qn_RegSettings_ReadValue(control, same.as.settings, "Settings", "Commport", "", &value)
          == QN_OK);
    CHECK_TEXT(value, "3");
    qn_free(control);

    control = made_control();
    CHECK(qn_RegSettings_ReadValue(control, kept_longer, "Settings", "Commport", "", &value)
          == QN_OK);
    CHECK_TEXT(value, "3");
    CHECK(qn_settings_keep(NULL) == NULL);
    qn_settings_free(kept_longer);
    qn_free(control);
}

static void a_file_keeps_settings_for_the_next_program(void) {
    char folder[] = "/tmp/qncomm-XXXXXX";
    char path[64];
    CHECK(mkdtemp(folder) != NULL);
    snprintf(path, sizeof(path), "%s/settings.ini", folder);
    for (int run = 0; run < 2; ++run) {
        qn_control* control = made_control();
        qn_settings* store = qn_settings_file(path);
        const char* value = NULL;
        CHECK(qn_RegSettings_ReadValue(control, store, "A", "b", "none", &value) == QN_OK);
        CHECK_TEXT(value, run == 0 ? "none" : "kept");
        CHECK(qn_RegSettings_WriteValue(control, store, "A", "b", "kept") == QN_OK);
        qn_settings_free(store);
        qn_free(control);
    }
    CHECK(unlink(path) == 0);
}

const test_case settings_cases[] = {
    {"a host keeps settings its own way", a_host_keeps_settings_its_own_way},
    {"a control takes a store and gives it back", a_control_takes_a_store_and_gives_it_back},
    {"a file keeps settings for the next program", a_file_keeps_settings_for_the_next_program},
    {NULL, NULL},
};
