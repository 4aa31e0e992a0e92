/* A GTK program with a button that captures. GTK's own main loop drives the session. */

#include <gtk/gtk.h>
#include <vorla/vorla.h>

typedef struct {
    GtkWidget* picture;
    GtkWidget* words;
} Host;

static void show_picture(Host* host, const void* bytes, size_t size) {
    GdkPixbufLoader* loader = gdk_pixbuf_loader_new();
    const gboolean read = gdk_pixbuf_loader_write(loader, bytes, size, NULL);
    if (gdk_pixbuf_loader_close(loader, NULL) && read)
        gtk_image_set_from_pixbuf(GTK_IMAGE(host->picture), gdk_pixbuf_loader_get_pixbuf(loader));
    g_object_unref(loader);
}

/* Called once for each capture that was started, on this thread. */
static void capture_ended(const vorla_outcome* outcome, void* user) {
    Host* host = user;
    size_t size = 0;
    const void* bytes = vorla_outcome_bytes(outcome, &size);
    gchar* words = g_strdup_printf("outcome %d, %zu bytes", vorla_outcome_kind(outcome), size);
    if (bytes) show_picture(host, bytes, size);
    gtk_label_set_text(GTK_LABEL(host->words), words);
    g_print("%s\n", words);
    g_free(words);
}

static void capture(GtkButton* button, gpointer user) {
    Host* host = user;
    const int error = vorla_start_capture(NULL, capture_ended, host);
    (void)button;
    if (error != VORLA_OK) gtk_label_set_text(GTK_LABEL(host->words), vorla_error_text(error));
}

int main(int argc, char** argv) {
    Host host;
    gtk_init(&argc, &argv);
    GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
    GtkWidget* button = gtk_button_new_with_label("Capture");
    host.picture = gtk_image_new();
    host.words = gtk_label_new("Nothing captured yet");
    gtk_container_set_border_width(GTK_CONTAINER(box), 12);
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(box), host.picture, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), host.words, FALSE, FALSE, 0);
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_window_set_title(GTK_WINDOW(window), "GTK host");
    gtk_window_set_default_size(GTK_WINDOW(window), 420, 320);
    g_signal_connect(button, "clicked", G_CALLBACK(capture), &host);
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), NULL);
    vorla_prepare();
    gtk_widget_show_all(window);
    gtk_main();
    return 0;
}
