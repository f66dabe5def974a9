/* Members by name, by number and by their typed functions. */
#include "Checks.h"

#include <qncomm/members.h>

static void a_member_is_called_by_its_name(void) {
    qn_control* control = made_control();
    qn_value found = qn_nothing();
    qn_value type = qn_nothing();
    CHECK(qn_call(control, "doautoconnect", NULL, 0, &found) == QN_OK);
    CHECK(found.type == QN_BOOLEAN && found.as.boolean);
    CHECK(qn_call(control, "PrinterType", NULL, 0, &type) == QN_OK);
    CHECK(type.type == QN_TEXT);
    CHECK_TEXT(type.as.text.bytes, "R7G");
    CHECK(type.as.text.length == 3);
    CHECK(qn_error_number(control) == 0);
    CHECK(qn_free(control) == QN_OK);
}

static void a_member_is_called_by_its_number(void) {
    qn_control* control = made_control();
    qn_value set[] = {qn_integer(255)};
    qn_value colour = qn_nothing();
    CHECK(qn_call_id(control, QN_SetBackColor, set, 1, NULL) == QN_OK);
    CHECK(qn_call_id(control, QN_BackColor, NULL, 0, &colour) == QN_OK);
    CHECK(colour.type == QN_INTEGER && colour.as.integer == 255);
    CHECK_FAILS(control, qn_call_id(control, QN_MEMBER(1, 0, 4000), NULL, 0, NULL), 438);
    CHECK_FAILS(control, qn_call_id(control, QN_MEMBER(9, 0, 1), NULL, 0, NULL), 438);
    qn_free(control);
}

static void a_collection_is_a_list_of_records(void) {
    qn_control* control = made_control();
    qn_value arguments[] = {qn_text("c:"), qn_nothing(), qn_boolean(1)};
    qn_value files = qn_nothing();
    CHECK(qn_call(control, "Files", arguments, 3, &files) == QN_OK);
    CHECK(files.type == QN_LIST && files.as.list.count > 0);
    for (size_t i = 0; i < files.as.list.count; ++i) {
        const qn_value* name = qn_field_of(&files.as.list.items[i], "Name");
        const qn_value* size = qn_field_of(&files.as.list.items[i], "Size");
        CHECK(name != NULL && name->type == QN_TEXT && name->as.text.length > 0);
        CHECK(size != NULL && size->type == QN_INTEGER);
    }
    CHECK(qn_field_of(&files, "Name") == NULL);
    qn_free(control);
}

static void what_a_member_makes_of_an_argument_comes_back(void) {
    qn_control* control = made_control();
    qn_value arguments[] = {qn_text(""), qn_text("LABEL.PRG"),
                            qn_text("10 PRINT \"A\"\r\n20 END\r\n")};
    qn_value errors = qn_nothing();
    CHECK(qn_call(control, "ModuleUpload", arguments, 3, &errors) == QN_OK);
    CHECK(errors.type == QN_LIST && errors.as.list.count == 0);
    CHECK_TEXT(arguments[1].as.text.bytes, "tmp:LABEL.PRG");

    const char* target = "OTHER.PRG";
    CHECK(qn_ModuleUpload(control, "", &target, NULL, NULL) == QN_FAILED);
    const char* text = "10 END\r\n";
    CHECK(qn_ModuleUpload(control, "", &target, &text, NULL) == QN_OK);
    CHECK_TEXT(target, "tmp:OTHER.PRG");
    qn_free(control);
}

static void each_member_has_a_function_of_its_own(void) {
    qn_control* control = made_control();
    int found = 0;
    const char* type = NULL;
    int32_t colour = 0;
    int16_t rows = 0;
    qn_value files = qn_nothing();
    CHECK(qn_DoAutoconnect(control, &found) == QN_OK && found);
    CHECK(qn_PrinterType(control, &type) == QN_OK);
    CHECK_TEXT(type, "R7G");
    CHECK(qn_SetForeColor(control, 0x123456) == QN_OK);
    CHECK(qn_ForeColor(control, &colour) == QN_OK && colour == 0x123456);
    CHECK(qn_CursorRow(control, &rows) == QN_OK && rows >= 1);
    CHECK(qn_Files(control, "c:", 0, 1, &files) == QN_OK && files.type == QN_LIST);
    CHECK(qn_clsQuorin_PrinterType(control, &type) == QN_OK);
    CHECK_TEXT(type, "R7G");
    CHECK(qn_PrinterType(control, NULL) == QN_OK);
    CHECK_FAILS(control, qn_KillQN(control, NULL), 449);
    qn_free(control);
}

static void an_error_has_number_source_and_description(void) {
    qn_control* control = made_control();
    qn_value arguments[] = {qn_text("nowhere:")};
    CHECK_FAILS(control, qn_call(control, "Files", arguments, 1, NULL), 1018);
    CHECK(qn_error_source(control)[0] != '\0');
    CHECK(qn_call(control, "Clear", NULL, 0, NULL) == QN_OK);
    CHECK(qn_error_number(control) == 0);
    CHECK_TEXT(qn_error_description(control), "");
    qn_free(control);
}

static void texts_of_the_printer_are_utf8_or_bytes_as_the_host_chooses(void) {
    const char* const utf8 = "PRINT \"\xC3\xA4\"";
    const char* const bytes = "PRINT \"\xE4\"";
    qn_options options = {0};
    options.size = sizeof(options);
    for (int eight = 0; eight < 2; ++eight) {
        options.texts = eight ? QN_8BIT : QN_UTF8;
        qn_control* control = qn_create(&options);
        qn_settings* store = qn_settings_memory();
        qn_value write[] = {qn_store(store), qn_text("A"), qn_text("b"),
                            qn_text(eight ? bytes : utf8)};
        qn_value read[] = {qn_store(store), qn_text("A"), qn_text("b"), qn_text("")};
        qn_value value = qn_nothing();
        CHECK(qn_call(control, "RegSettings.WriteValue", write, 4, NULL) == QN_OK);
        CHECK(qn_call(control, "RegSettings.ReadValue", read, 4, &value) == QN_OK);
        CHECK_TEXT(value.as.text.bytes, eight ? bytes : utf8);
        qn_settings_free(store);
        qn_free(control);
    }
}

const test_case call_cases[] = {
    {"a member is called by its name", a_member_is_called_by_its_name},
    {"a member is called by its number", a_member_is_called_by_its_number},
    {"a collection is a list of records", a_collection_is_a_list_of_records},
    {"what a member makes of an argument comes back",
     what_a_member_makes_of_an_argument_comes_back},
    {"each member has a function of its own", each_member_has_a_function_of_its_own},
    {"an error has number, source and description", an_error_has_number_source_and_description},
    {"texts of the printer are UTF-8 or bytes as the host chooses",
     texts_of_the_printer_are_utf8_or_bytes_as_the_host_chooses},
    {NULL, NULL},
};
