/// @file
/// The control for programs in C and in every language that can call C.
///
/// A program makes a control, says which addresses its ports have, and calls its members by name or
/// number (qn_call, qn_call_id) or by the functions of qncomm/members.h, of which each is one such
/// call. docs/members.md lists the members.
///
/// One thread: a control belongs to the thread that made it. Every call from another one, or from a
/// child process, fails with error 5 and changes nothing; qn_cancel alone may come from anywhere.
///
/// Calls that wait for the printer keep the control's loop running meanwhile, so callbacks may run
/// during a call, and may call the control themselves, qn_free included.
///
/// Texts are UTF-8 unless the options of the control say otherwise.
#ifndef QNCOMM_QNCOMM_H
#define QNCOMM_QNCOMM_H

// For compilers of C: NOLINTBEGIN(modernize-deprecated-headers, modernize-use-nullptr)

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#ifdef __cplusplus
extern "C" {
#endif

/// A control with its port and its terminal.
typedef struct qn_control qn_control;

/// A store of settings: what a control remembers of its port, and the texts of its function keys.
typedef struct qn_settings qn_settings;

/// How a call has ended. Unless it says otherwise, a function that returns a status returns one of
/// these.
typedef enum qn_status {
    QN_OK = 0,        ///< done
    QN_FAILED = 1,    ///< qn_error_number and its like tell why
    QN_CANCELLED = 2, ///< ended by qn_cancel; the error's number is 18
    QN_FREED = 3      ///< a callback has freed the control meanwhile: it is no longer there
} qn_status;

// -- Values

/// What a value is.
typedef enum qn_type {
    QN_NOTHING = 0,  ///< no result, or an argument that is left out
    QN_BOOLEAN = 1,  ///< as.boolean, 0 for False
    QN_INTEGER = 2,  ///< as.integer
    QN_REAL = 3,     ///< as.real
    QN_TEXT = 4,     ///< as.text
    QN_SETTINGS = 5, ///< as.settings
    QN_LIST = 6,     ///< as.list
    QN_RECORD = 7    ///< as.record
} qn_type;

/// Bytes with their number. A text in a value of the library has a NUL behind the last one, which
/// length does not count; nothing else needs one.
typedef struct qn_bytes {
    const char* bytes; ///< may be NULL when there are none
    size_t length;     ///< how many
} qn_bytes;

struct qn_value;
struct qn_field;

/// Values in their order.
typedef struct qn_list {
    const struct qn_value* items; ///< may be NULL when there are none
    size_t count;                 ///< how many
} qn_list;

/// Named values in their order.
typedef struct qn_record {
    const struct qn_field* fields; ///< may be NULL when there are none
    size_t count;                  ///< how many
} qn_record;

/// One value. It owns nothing: what it points to is the host's in an argument, and the library's in
/// a result, valid until the next call on the same control (in a callback: until it returns).
typedef struct qn_value {
    int type; ///< a qn_type: which of the following it is
    /// What it holds.
    union {
        int boolean;           ///< 0 or 1
        int32_t integer;       ///< numbers of 16 and of 32 bits
        double real;           ///< a number with a fraction
        qn_bytes text;         ///< as the control's options say
        qn_settings* settings; ///< never freed by whoever gets it as a result
        qn_list list;          ///< of values or of records
        qn_record record;      ///< an object's fields
    } as;
} qn_value;

/// A value with its name.
typedef struct qn_field {
    const char* name; ///< ends with a NUL
    qn_value value;   ///< what it is
} qn_field;

/// Nothing: an argument that is left out.
static inline qn_value qn_nothing(void) {
    qn_value value = {QN_NOTHING, {0}};
    return value;
}
/// True for every number but 0.
static inline qn_value qn_boolean(int boolean) {
    qn_value value = {QN_BOOLEAN, {boolean != 0}};
    return value;
}
/// A whole number.
static inline qn_value qn_integer(int32_t integer) {
    qn_value value = {QN_INTEGER, {0}};
    value.as.integer = integer;
    return value;
}
/// A number with a fraction.
static inline qn_value qn_real(double real) {
    qn_value value = {QN_REAL, {0}};
    value.as.real = real;
    return value;
}
/// Bytes of the host, which may hold NULs.
static inline qn_value qn_bytes_of(const char* bytes, size_t length) {
    qn_value value = {QN_TEXT, {0}};
    value.as.text.bytes = bytes;
    value.as.text.length = length;
    return value;
}
/// A text of the host that ends with a NUL; nothing for NULL.
static inline qn_value qn_text(const char* text) {
    return text ? qn_bytes_of(text, strlen(text)) : qn_nothing();
}
/// Values of the host.
static inline qn_value qn_list_of(const qn_value* items, size_t count) {
    qn_value value = {QN_LIST, {0}};
    value.as.list.items = items;
    value.as.list.count = count;
    return value;
}
/// A store; nothing for NULL.
static inline qn_value qn_store(qn_settings* settings) {
    qn_value value = {QN_NOTHING, {0}};
    if (settings) {
        value.type = QN_SETTINGS;
        value.as.settings = settings;
    }
    return value;
}

/// The field of that name, told apart by case, of a record; NULL for another name and for what is
/// no record.
static inline const qn_value* qn_field_of(const qn_value* record, const char* name) {
    if (record && record->type == QN_RECORD)
        for (size_t i = 0; i < record->as.record.count; ++i)
            if (strcmp(record->as.record.fields[i].name, name) == 0)
                return &record->as.record.fields[i].value;
    return NULL;
}

// -- A control and its end

/// How the texts of a control are written. Paths, messages and names of members are UTF-8 in any
/// case.
typedef enum qn_texts {
    QN_UTF8 = 0, ///< what goes to the printer and comes from it is turned from UTF-8 and into it
    QN_8BIT = 1  ///< it passes as it is: 8-bit, Windows-1252 for most printers
} qn_texts;

/// What a host may choose. Set all of it to 0 and then size.
typedef struct qn_options {
    size_t size;         ///< sizeof(qn_options), so that a later library knows this one
    int texts;           ///< a qn_texts: how texts are written
    int remembered;      ///< speaks at once to the printer that its store remembers
    int listen;          ///< listens before it searches, and sends nothing where bytes come
    int16_t rows;        ///< of the terminal, 1 to 1000; 0: 300
    int16_t columns;     ///< of the terminal, 1 to 1000; 0: 300
    int32_t scroll_back; ///< lines that are kept above the terminal; 0: 10000
} qn_options;

/// The version of the library that runs, such as "0.1.0".
const char* qn_version(void);

/// Makes a control; options may be NULL. It has settings in memory, by which its port is number 1.
/// NULL when the system has no memory or descriptors left, or for a size of options that is less
/// than any library has known.
qn_control* qn_create(const qn_options* options);

/// Ends a control: closes its port and calls no callback any more. In one of its own callbacks it
/// ends what runs, and the control is gone when the outermost call returns, with QN_FREED. NULL is
/// fine.
int qn_free(qn_control* control);

/// The number of the error of the last call that failed, 0 when it did not fail. 60000 and more is
/// the printer's own number plus 60000. 5 without a control and from a thread that is not the
/// control's.
int32_t qn_error_number(const qn_control* control);
/// Class and operation that raised it, such as "clsDataLink,Upload"; valid until the next call.
const char* qn_error_source(const qn_control* control);
/// What a person is told; valid until the next call.
const char* qn_error_description(const qn_control* control);

/// Binds a port's number (0 to 16) to an address: a device such as "/dev/ttyUSB0",
/// "tcp://host:port", "rfc2217://host:port", "sim:R7G". It counts from the next opening. Fails with
/// 5 for what is no address.
int qn_bind(qn_control* control, int port, const char* address);

/// How a line is to be set.
typedef struct qn_line_settings {
    int baud;      ///< bits per second
    char parity;   ///< n, e, o, m or s
    int data_bits; ///< 7 or 8
    int stop_bits; ///< 1 or 2
    int xon_xoff;  ///< flow control by bytes
    int rts_cts;   ///< flow control by the lines RTS and CTS
} qn_line_settings;

/// A line to a printer that the host serves: a driver of its own, a tunnel, a test. Called on the
/// control's thread; must not call the control. Set all of it to 0 and then size; those that may be
/// NULL say so.
typedef struct qn_line_functions {
    size_t size; ///< sizeof(qn_line_functions), so that a later library knows this one
    /// Opens the line; a search opens and closes it often. Returns 0, or a number of errno.
    int (*open)(void* user, const qn_line_settings* settings);
    /// Closes the open line and forgets what has not left; never waits for the line.
    void (*close)(void* user);
    /// Sets the open line anew. Returns 0, or a number of errno. NULL: any settings will do.
    int (*configure)(void* user, const qn_line_settings* settings);
    /// A descriptor of the open line, which the control sleeps on and never reads: readable while
    /// bytes wait, writable while there is room for some. The same until it is closed.
    int (*handle)(void* user);
    /// Takes up to size bytes that have come, and never waits. Returns how many, 0 for none now,
    /// less for a line that is gone.
    ptrdiff_t (*read)(void* user, char* bytes, size_t size);
    /// Sends some of the bytes, from their start, and never waits. Returns how many, 0 when there
    /// is no room, less for a line that is gone.
    ptrdiff_t (*write)(void* user, const char* bytes, size_t size);
    /// Begins a break (on other than 0) or ends it. Returns 0, or a number of errno. NULL: the line
    /// has none.
    int (*hold_break)(void* user, int on);
    /// Whether the printer holds DSR. NULL: the line has no modem lines.
    int (*dsr)(void* user);
} qn_line_functions;

/// Binds a port's number (0 to 16) to a line of the host. The functions are copied; user must live
/// until the control is gone. Fails with 5 for functions that are missing.
int qn_bind_line(qn_control* control, int port, const qn_line_functions* functions, void* user);

/// Shows the control to itself, as a form would (shown other than 0), or hides it. Shown, it holds
/// the port open and its terminal takes what the printer sends; members that need an open port then
/// have one.
int qn_show(qn_control* control, int shown);

// -- Members

/// The number of a member for qn_call_id; qncomm/members.h has one name for each.
#define QN_MEMBER(of, kind, id) (((of) << 16) | ((kind) << 12) | (id))

/// Calls a member by its name, in any case. A member of the control stands alone ("Files"), those
/// of the other classes behind their class: "clsQuorin.Kill", "clsDataLink.SendBreak",
/// "RegSettings.ReadValue", whose first argument is the settings object. A property is read with
/// the arguments that it has, and set with one more. Arguments at the end, and those of QN_NOTHING,
/// are left out. What the member gives back through an argument is in its place when the call is
/// done.
///
/// arguments may be NULL when there are none, result when it is not wanted. Fails with 438 for an
/// unknown name, 449 or 450 for too few or too many arguments, 13 or 6 for one of a wrong type or
/// range, 5 for a text that is no UTF-8, holds a NUL where a path is wanted, or a character that
/// the printer lacks; then with what the member raises.
int qn_call(qn_control* control, const char* member, qn_value* arguments, size_t count,
            qn_value* result);

/// The same for a member's number.
int qn_call_id(qn_control* control, int32_t member, qn_value* arguments, size_t count,
               qn_value* result);

// -- Events

/// Hears an event. What it puts in the place of an argument that is passed by reference goes back;
/// it must live until the handler is called again. A result other than 0 asks a long operation to
/// stop, as setting bCancel does.
typedef int (*qn_event_handler)(void* user, qn_value* arguments, size_t count);

/// Has the handler called for an event: "StatusEvent", "PortStateEvent", "LiveStateEvent", or one
/// of "clsQuorin.…" and "clsDataLink.…". It takes the place of the one before; NULL hears no more.
/// Fails with 438 for an unknown name.
int qn_on(qn_control* control, const char* event, qn_event_handler handler, void* user);

/// A message box of the control. Lines of the text end with CR LF.
typedef struct qn_box {
    const char* text;  ///< what is told or asked
    const char* title; ///< of the box
    int buttons;       ///< 0: OK, 1: OK and Cancel, 2: Yes and No
    int icon;          ///< 0: none, 1: critical, 2: question, 3: exclamation, 4: information
} qn_box;

/// Shows a box and returns what it was answered with: 1 OK, 2 Cancel, 6 Yes, 7 No; 0 stands for
/// the answer without a handler.
typedef int (*qn_box_handler)(void* user, const qn_box* box);

/// Has boxes shown by the handler. Without one, boxes are answered with OK, Cancel or No, whichever
/// of them comes last.
int qn_on_box(qn_control* control, qn_box_handler handler, void* user);

/// Receives what travels on the line: kind 0 sent, 1 received, 2 what happened to the port, as a
/// text. ms counts from an arbitrary start. Must not call the control: such a call fails with 5.
typedef void (*qn_trace_handler)(void* user, int64_t ms, int kind, qn_bytes bytes);

/// Has the handler called for all that travels on the line; NULL ends that.
int qn_on_trace(qn_control* control, qn_trace_handler handler, void* user);

// -- Waiting

/// From any thread, and from a signal handler: ends what runs in the control. A transfer tells the
/// other side first; the call returns QN_CANCELLED and the port is closed as after any error.
/// Nothing happens when nothing runs. The control must not be freed meanwhile.
void qn_cancel(qn_control* control);

/// Called when a signal of the process has ended a sleep of the control, and when qn_wake_fd was
/// written to, so that a language can run its own signal handlers there. It may call qn_cancel.
typedef void (*qn_signal_handler)(void* user);

/// Has the handler called so; NULL ends that.
int qn_on_signal(qn_control* control, qn_signal_handler handler, void* user);

/// A descriptor that a signal handler may write any byte to, and never waits: that wakes the
/// control also when the signal came between two sleeps. The control's own; -1 when the call fails.
int qn_wake_fd(qn_control* control);

/// Does what is due in the control (bytes of the line, timers); when nothing is, sleeps until
/// something is or ms milliseconds have passed. For a program whose loop is its own.
int qn_step(qn_control* control, int32_t ms);

/// Does and sleeps so until qn_quit; QN_CANCELLED when qn_cancel ends it.
int qn_run(qn_control* control);

/// Ends the innermost qn_run when the callback that calls this returns.
int qn_quit(qn_control* control);

/// A descriptor for another loop (poll, epoll, GLib, libuv): while it is readable, call
/// qn_dispatch. The control's own; -1 when the call fails.
int qn_fd(qn_control* control);

/// Does what is due, and never sleeps.
int qn_dispatch(qn_control* control);

// -- The terminal, for a host that draws it. Rows and columns count from 1.

/// How a cell is drawn, beside its colours; bits of qn_cell.style.
typedef enum qn_style {
    QN_BOLD = 1 << 0,             ///< heavier strokes
    QN_FAINT = 1 << 1,            ///< text nearer to its background
    QN_ITALIC = 1 << 2,           ///< slanted
    QN_UNDERLINE = 1 << 3,        ///< one line below
    QN_DOUBLE_UNDERLINE = 1 << 4, ///< two lines below
    QN_BLINK = 1 << 5,            ///< comes and goes
    QN_INVERSE = 1 << 6,          ///< the two colours change places
    QN_CONCEAL = 1 << 7,          ///< text in the colour of its background
    QN_STRIKE = 1 << 8,           ///< a line through the middle
    QN_OVERLINE = 1 << 9          ///< a line above
} qn_style;

/// One cell of the terminal. Colours are 0x00BBGGRR.
typedef struct qn_cell {
    uint32_t character; ///< its Unicode number; a blank where nothing was written
    uint32_t fore;      ///< of the text
    uint32_t back;      ///< behind it
    uint32_t style;     ///< bits of qn_style
} qn_cell;

/// What the terminal is like now.
typedef struct qn_screen {
    int rows;           ///< how many
    int columns;        ///< how many
    int cursor_row;     ///< where the cursor is
    int cursor_column;  ///< where the cursor is
    int cursor_visible; ///< whether it is to be shown
} qn_screen;

/// What has changed on the screen: first move the picture up by scrolled rows (a new picture when
/// that is all of them), then draw these rows.
typedef struct qn_damage {
    size_t scrolled;      ///< rows, at most as many as the screen has
    const uint16_t* rows; ///< ascending; the library's, until the next call
    size_t count;         ///< how many rows are named
    int bell;             ///< whether the bell has rung
} qn_damage;

/// Something that is shown differs now; qn_screen_damage tells what. Called while text comes, so it
/// only notes that the host is to paint.
typedef void (*qn_screen_handler)(void* user);

/// Has the handler called so; NULL ends that.
int qn_on_screen(qn_control* control, qn_screen_handler handler, void* user);

/// Size and cursor.
int qn_screen_state(qn_control* control, qn_screen* screen);

/// Up to count cells of a row, from its first; those beyond the terminal's columns are left as they
/// are. Fails with 9 for a row that there is not.
int qn_screen_row(qn_control* control, int row, qn_cell* cells, size_t count);

/// What changed since the last call, everything on the first: each change is told once.
int qn_screen_damage(qn_control* control, qn_damage* damage);

/// Types bytes into the terminal, as they go to the line. *taken, unless it is NULL, is how many it
/// took: none while the port is closed or an operation has it, fewer than all when the line is
/// behind.
int qn_type_bytes(qn_control* control, const char* bytes, size_t length, size_t* taken);

// -- Settings

/// A store that lives as long as it is used. NULL without memory.
qn_settings* qn_settings_memory(void);

/// A store in a file, which several programs may share; NULL for path is the user's own. The file
/// need not exist. A file that cannot be written fails with 70, 61 or 75 when a value is written.
qn_settings* qn_settings_file(const char* path);

/// A store of the host's own. Called on the control's thread; must not call the control.
typedef struct qn_store_functions {
    /// Finds a value and puts it in *value, which must live until the next call of this. Returns 0
    /// when there is none.
    int (*read)(void* user, const char* section, const char* key, qn_bytes* value);
    /// Keeps a value. Returns 0 when it is kept; anything else raises 75.
    int (*write)(void* user, const char* section, const char* key, qn_bytes value);
} qn_store_functions;

/// A store by functions of the host, which are copied; both are needed. NULL without them.
qn_settings* qn_settings_host(const qn_store_functions* functions, void* user);

/// The same store once more, for a host that wants to keep one that is a result; it is given back
/// as one that the host has made. NULL for NULL and without memory.
qn_settings* qn_settings_keep(const qn_settings* settings);

/// Gives a store back: the host's use of it, not that of controls that were given it. NULL is fine.
void qn_settings_free(qn_settings* settings);

#ifdef __cplusplus
}
#endif

// NOLINTEND(modernize-deprecated-headers, modernize-use-nullptr)

#endif
