/* A capture from a program without any loop: it blocks until the user is done. */

#include <stdio.h>

#include <vorla/vorla.h>

static int save(const char* path, const void* bytes, size_t size) {
    FILE* file = fopen(path, "wb");
    if (!file) return 0;
    const int written = fwrite(bytes, 1, size, file) == size;
    return fclose(file) == 0 && written;
}

int main(int argc, char** argv) {
    const char* path = argc > 1 ? argv[1] : "capture.png";
    vorla_outcome* outcome = NULL;
    const int error = vorla_run_capture(NULL, &outcome);
    if (error != VORLA_OK) {
        fprintf(stderr, "refused: %s\n", vorla_error_text(error));
        return 2;
    }
    size_t size = 0;
    const void* bytes = vorla_outcome_bytes(outcome, &size);
    const int saved = bytes && save(path, bytes, size);
    printf("outcome %d, %zu bytes\n", vorla_outcome_kind(outcome), size);
    vorla_outcome_free(outcome);
    return saved ? 0 : 1;
}
