/* A line that the host serves: here one to a printer in another process. */
#include "Checks.h"

#include <errno.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <qncomm/members.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

typedef struct own_line {
    uint16_t port;
    int fd;
    int opened;
    int closed;
    int refuses;
    int gone;
    qn_line_settings settings;
} own_line;

static int open_line(void* user, const qn_line_settings* settings) {
    own_line* line = user;
    if (line->refuses) return line->refuses;
    struct sockaddr_in where = {.sin_family = AF_INET, .sin_port = htons(line->port)};
    where.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    line->fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(line->fd, (const struct sockaddr*)&where, sizeof(where)) != 0) {
        const int number = errno;
        close(line->fd);
        return number;
    }
    fcntl(line->fd, F_SETFL, O_NONBLOCK);
    line->settings = *settings;
    ++line->opened;
    return 0;
}

static void close_line(void* user) {
    own_line* line = user;
    close(line->fd);
    line->fd = -1;
    ++line->closed;
}

static int handle_of_line(void* user) {
    return ((own_line*)user)->fd;
}

static ptrdiff_t count_of(ssize_t moved) {
    return moved < 0 && errno == EAGAIN ? 0 : moved;
}

static ptrdiff_t read_line(void* user, char* bytes, size_t size) {
    own_line* line = user;
    return line->gone ? -1 : count_of(read(line->fd, bytes, size));
}

static ptrdiff_t write_line(void* user, const char* bytes, size_t size) {
    own_line* line = user;
    return line->gone ? -1 : count_of(write(line->fd, bytes, size));
}

static qn_line_functions functions_of_line(void) {
    qn_line_functions functions = {0};
    functions.size = sizeof(functions);
    functions.open = open_line;
    functions.close = close_line;
    functions.handle = handle_of_line;
    functions.read = read_line;
    functions.write = write_line;
    return functions;
}

/* A printer that serves on a socket of this machine, whose number goes to port. */
static pid_t started_printer(uint16_t* port) {
    int ends[2];
    CHECK(pipe(ends) == 0);
    const pid_t printer = fork();
    if (printer == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        execl(QNSIM_PROGRAM, "qnsim", "--tcp", "0", (char*)NULL);
        _exit(127);
    }
    close(ends[1]);
    FILE* said = fdopen(ends[0], "r");
    char text[256] = "";
    const char* name = fgets(text, sizeof(text), said) ? strstr(text, "tcp://") : NULL;
    CHECK(name != NULL);
    *port = (uint16_t)(name ? atoi(strrchr(name, ':') + 1) : 0);
    fclose(said);
    return printer;
}

static void a_host_serves_a_line_of_its_own(void) {
    own_line line = {.fd = -1};
    const pid_t printer = started_printer(&line.port);
    const qn_line_functions functions = functions_of_line();
    qn_control* control = qn_create(NULL);
    const char* type = NULL;
    qn_value files = qn_nothing();
    CHECK(qn_bind_line(control, 1, &functions, &line) == QN_OK);
    CHECK(qn_PrinterType(control, &type) == QN_OK);
    CHECK_TEXT(type, "R7G");
    CHECK(line.settings.baud >= 300 && line.settings.data_bits >= 7);
    CHECK(qn_Files(control, "c:", 1, 0, &files) == QN_OK && files.as.list.count > 0);
    CHECK(line.opened > 0 && line.opened == line.closed);

    CHECK(qn_show(control, 1) == QN_OK);
    CHECK(line.opened == line.closed + 1);
    CHECK_FAILS(control, qn_clsDataLink_SendBreak(control, 20), 8012);
    line.gone = 1;
    size_t taken = 0;
    CHECK(qn_type_bytes(control, "A", 1, &taken) == QN_OK);
    CHECK(qn_step(control, 0) == QN_OK);
    qn_free(control);
    CHECK(line.opened == line.closed);
    kill(printer, SIGTERM);
    CHECK(waitpid(printer, NULL, 0) == printer);
}

static void a_line_that_does_not_open_finds_no_printer(void) {
    own_line line = {.fd = -1, .refuses = EBUSY};
    qn_line_functions functions = functions_of_line();
    qn_control* control = qn_create(NULL);
    int found = 1;
    CHECK(qn_bind_line(control, 1, &functions, &line) == QN_OK);
    CHECK(qn_DoAutoconnect(control, &found) == QN_OK && !found);
    CHECK(line.opened == 0 && line.closed == 0);

    CHECK_FAILS(control, qn_bind_line(control, 1, NULL, &line), 5);
    CHECK_FAILS(control, qn_bind_line(control, 17, &functions, &line), 5);
    functions.read = NULL;
    CHECK_FAILS(control, qn_bind_line(control, 1, &functions, &line), 5);
    functions = functions_of_line();
    functions.size = 8;
    CHECK_FAILS(control, qn_bind_line(control, 1, &functions, &line), 5);
    qn_free(control);
}

const test_case line_cases[] = {
    {"a host serves a line of its own", a_host_serves_a_line_of_its_own},
    {"a line that does not open finds no printer", a_line_that_does_not_open_finds_no_printer},
    {NULL, NULL},
};
