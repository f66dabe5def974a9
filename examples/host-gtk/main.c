/* A window of GTK 4 with the printer's terminal in it: the control tells which cells have changed,
   this program draws them, and what is typed goes back. The control's descriptor is in the loop of
   GTK, so nothing here waits but the search. */
#include <glib-unix.h>
#include <gtk/gtk.h>
#include <qncomm/members.h>

enum { Rows = 25, Columns = 80 };

typedef struct host {
    qn_control* control;
    GtkWidget* window;
    GtkWidget* area;
    cairo_surface_t*
        picture; /* the terminal without its cursor, kept from one damage to the next */
    PangoFontDescription* font;
    int cell_width, cell_height;
    gboolean searches;
} host;

/* -- The picture */

static void set_colour(cairo_t* to, uint32_t bgr) {
    cairo_set_source_rgb(to, (bgr & 0xFF) / 255.0, (bgr >> 8 & 0xFF) / 255.0,
                         (bgr >> 16 & 0xFF) / 255.0);
}

static gboolean looks_the_same(const qn_cell* a, const qn_cell* b) {
    return a->fore == b->fore && a->back == b->back && a->style == b->style;
}

static void add_attribute(PangoAttrList* list, gboolean wanted, PangoAttribute* attribute) {
    if (wanted)
        pango_attr_list_insert(list, attribute);
    else
        pango_attribute_destroy(attribute);
}

static PangoAttrList* attributes_of(uint32_t style) {
    PangoAttrList* list = pango_attr_list_new();
    add_attribute(list, style & QN_BOLD, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    add_attribute(list, style & QN_ITALIC, pango_attr_style_new(PANGO_STYLE_ITALIC));
    add_attribute(list, style & QN_UNDERLINE, pango_attr_underline_new(PANGO_UNDERLINE_SINGLE));
    add_attribute(list, style & QN_DOUBLE_UNDERLINE,
                  pango_attr_underline_new(PANGO_UNDERLINE_DOUBLE));
    add_attribute(list, style & QN_STRIKE, pango_attr_strikethrough_new(TRUE));
    add_attribute(list, style & QN_OVERLINE, pango_attr_overline_new(PANGO_OVERLINE_SINGLE));
    return list;
}

/* Neighbours that look the same, from a column on. */
static void draw_run(host* h, cairo_t* to, PangoLayout* layout, const qn_cell* cells, int count,
                     int x, int y) {
    const qn_cell* first = &cells[0];
    const gboolean inverse = (first->style & QN_INVERSE) != 0;
    set_colour(to, inverse ? first->fore : first->back);
    cairo_rectangle(to, x, y, count * h->cell_width, h->cell_height);
    cairo_fill(to);
    if (first->style & QN_CONCEAL) return;

    GString* text = g_string_new(NULL);
    for (int i = 0; i < count; ++i)
        g_string_append_unichar(text, cells[i].character);
    pango_layout_set_text(layout, text->str, (int)text->len);
    g_string_free(text, TRUE);
    PangoAttrList* attributes = attributes_of(first->style);
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
    set_colour(to, inverse ? first->back : first->fore);
    cairo_move_to(to, x, y);
    pango_cairo_show_layout(to, layout);
}

static void draw_row(host* h, cairo_t* to, PangoLayout* layout, int row) {
    qn_cell cells[Columns];
    if (qn_screen_row(h->control, row, cells, Columns) != QN_OK) return;
    for (int begin = 0, end; begin < Columns; begin = end) {
        for (end = begin + 1; end < Columns && looks_the_same(&cells[begin], &cells[end]);)
            ++end;
        draw_run(h, to, layout, &cells[begin], end - begin, begin * h->cell_width,
                 (row - 1) * h->cell_height);
    }
}

static cairo_surface_t* new_picture(const host* h) {
    const int scale = gtk_widget_get_scale_factor(h->area);
    cairo_surface_t* picture = cairo_image_surface_create(
        CAIRO_FORMAT_RGB24, Columns * h->cell_width * scale, Rows * h->cell_height * scale);
    cairo_surface_set_device_scale(picture, scale, scale);
    return picture;
}

/* What was there, so many rows higher. */
static void scroll(host* h, size_t rows) {
    cairo_surface_t* moved = new_picture(h);
    cairo_t* to = cairo_create(moved);
    cairo_set_source_surface(to, h->picture, 0, -(double)rows * h->cell_height);
    cairo_paint(to);
    cairo_destroy(to);
    cairo_surface_destroy(h->picture);
    h->picture = moved;
}

static void bring_up_to_date(host* h) {
    qn_damage damage;
    if (qn_screen_damage(h->control, &damage) != QN_OK) return;
    if (damage.bell) gdk_surface_beep(gtk_native_get_surface(GTK_NATIVE(h->window)));
    if (damage.scrolled > 0 && damage.scrolled < Rows) scroll(h, damage.scrolled);
    cairo_t* to = cairo_create(h->picture);
    PangoLayout* layout = pango_cairo_create_layout(to);
    pango_layout_set_font_description(layout, h->font);
    for (size_t i = 0; i < damage.count; ++i)
        draw_row(h, to, layout, damage.rows[i]);
    g_object_unref(layout);
    cairo_destroy(to);
}

static void draw(GtkDrawingArea* area, cairo_t* to, int width, int height, gpointer data) {
    (void)area, (void)width, (void)height;
    host* h = data;
    bring_up_to_date(h);
    cairo_set_source_surface(to, h->picture, 0, 0);
    cairo_paint(to);
    qn_screen screen;
    if (qn_screen_state(h->control, &screen) != QN_OK || !screen.cursor_visible) return;
    cairo_set_operator(to, CAIRO_OPERATOR_DIFFERENCE);
    cairo_set_source_rgb(to, 1, 1, 1);
    cairo_rectangle(to, (screen.cursor_column - 1) * h->cell_width,
                    (screen.cursor_row - 1) * h->cell_height, h->cell_width, h->cell_height);
    cairo_fill(to);
}

static void screen_changed(void* user) {
    gtk_widget_queue_draw(
        ((host*)user)->area); /* one drawing, however often this is called before it */
}

/* -- Keys */

static const struct {
    guint key;
    const char* bytes;
} keys[] = {{GDK_KEY_Return, "\r"},   {GDK_KEY_KP_Enter, "\r"},  {GDK_KEY_BackSpace, "\b"},
            {GDK_KEY_Tab, "\t"},      {GDK_KEY_Escape, "\033"},  {GDK_KEY_Up, "\033[A"},
            {GDK_KEY_Down, "\033[B"}, {GDK_KEY_Right, "\033[C"}, {GDK_KEY_Left, "\033[D"}};

static gboolean type(host* h, const char* bytes, size_t length) {
    qn_type_bytes(h->control, bytes, length, NULL);
    return GDK_EVENT_STOP;
}

static gboolean key_pressed(GtkEventControllerKey* keyboard, guint key, guint code,
                            GdkModifierType state, gpointer data) {
    (void)keyboard, (void)code;
    for (size_t i = 0; i < G_N_ELEMENTS(keys); ++i)
        if (keys[i].key == key) return type(data, keys[i].bytes, strlen(keys[i].bytes));
    const gunichar character = gdk_keyval_to_unicode(key);
    if (character == 0 || state & GDK_ALT_MASK) return GDK_EVENT_PROPAGATE;
    if (state & GDK_CONTROL_MASK) {
        const char control = (char)(character & 0x1F);
        return type(data, &control, 1);
    }
    char text[6];
    const gint length = g_unichar_to_utf8(character, text);
    gsize count = 0;
    char* bytes = g_convert(text, length, "WINDOWS-1252", "UTF-8", NULL, &count, NULL);
    if (bytes) type(data, bytes, count);
    g_free(bytes);
    return GDK_EVENT_STOP;
}

/* -- The control in the loop of GTK */

static gboolean dispatch(gint descriptor, GIOCondition condition, gpointer data) {
    (void)descriptor, (void)condition;
    qn_dispatch(((host*)data)->control);
    return G_SOURCE_CONTINUE;
}

/* The search waits for the printer in the control's own loop, so the window lives from these
 * messages. */
static int status_told(void* user, qn_value* arguments, size_t count) {
    (void)count;
    gtk_window_set_title(GTK_WINDOW(((host*)user)->window), arguments[0].as.text.bytes);
    while (g_main_context_iteration(NULL, FALSE)) {
    }
    return 0;
}

static void search(GtkButton* button, gpointer data) {
    host* h = data;
    gtk_widget_set_sensitive(GTK_WIDGET(button), FALSE);
    int found = 0;
    h->searches = TRUE;
    if (qn_DoAutoconnect(h->control, &found) != QN_OK)
        gtk_window_set_title(GTK_WINDOW(h->window), qn_error_description(h->control));
    h->searches = FALSE;
    gtk_widget_set_sensitive(GTK_WIDGET(button), TRUE);
    gtk_widget_grab_focus(h->area);
}

static gboolean close_requested(GtkWindow* window, gpointer data) {
    (void)window;
    host* h = data;
    if (h->searches)
        qn_cancel(h->control); /* and the next request closes */
    else
        qn_on_screen(h->control, NULL, NULL);
    return h->searches;
}

static void measure(host* h) {
    PangoLayout* layout = gtk_widget_create_pango_layout(h->area, "M");
    pango_layout_set_font_description(layout, h->font);
    pango_layout_get_pixel_size(layout, &h->cell_width, &h->cell_height);
    g_object_unref(layout);
}

static void make_window(host* h) {
    h->window = gtk_window_new();
    h->area = gtk_drawing_area_new();
    measure(h);
    h->picture = new_picture(h);
    gtk_drawing_area_set_content_width(GTK_DRAWING_AREA(h->area), Columns * h->cell_width);
    gtk_drawing_area_set_content_height(GTK_DRAWING_AREA(h->area), Rows * h->cell_height);
    gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(h->area), draw, h, NULL);
    gtk_widget_set_focusable(h->area, TRUE);
    GtkEventController* keyboard = gtk_event_controller_key_new();
    g_signal_connect(keyboard, "key-pressed", G_CALLBACK(key_pressed), h);
    gtk_widget_add_controller(h->area, keyboard);

    GtkWidget* bar = gtk_header_bar_new();
    GtkWidget* button = gtk_button_new_with_label("Find Printer");
    g_signal_connect(button, "clicked", G_CALLBACK(search), h);
    gtk_header_bar_pack_start(GTK_HEADER_BAR(bar), button);
    gtk_window_set_titlebar(GTK_WINDOW(h->window), bar);
    gtk_window_set_title(GTK_WINDOW(h->window), "QNComm");
    gtk_window_set_resizable(GTK_WINDOW(h->window), FALSE);
    gtk_window_set_child(GTK_WINDOW(h->window), h->area);
    g_signal_connect(h->window, "close-request", G_CALLBACK(close_requested), h);
    gtk_window_present(GTK_WINDOW(h->window));
    gtk_widget_grab_focus(h->area);
}

int main(int argc, char** argv) {
    gtk_init();
    const qn_options options = {
        .size = sizeof options, .listen = 1, .rows = Rows, .columns = Columns};
    host h = {.control = qn_create(&options),
              .font = pango_font_description_from_string("Monospace 11")};
    if (!h.control) return 1;
    make_window(&h);
    qn_SetBackColor(h.control, 0xFFFFFF);
    qn_on_screen(h.control, screen_changed, &h);
    qn_on(h.control, "StatusEvent", status_told, &h);
    const guint watch = g_unix_fd_add(qn_fd(h.control), G_IO_IN, dispatch, &h);
    if (qn_bind(h.control, 1, argc > 1 ? argv[1] : "/dev/ttyUSB0") != QN_OK
        || qn_show(h.control, 1) != QN_OK)
        gtk_window_set_title(GTK_WINDOW(h.window), qn_error_description(h.control));
    while (g_list_model_get_n_items(gtk_window_get_toplevels()) > 0)
        g_main_context_iteration(NULL, TRUE);
    g_source_remove(watch);
    qn_free(h.control);
    cairo_surface_destroy(h.picture);
    pango_font_description_free(h.font);
    return 0;
}
