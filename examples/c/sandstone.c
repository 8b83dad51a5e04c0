/* Turns a photograph into sandstone: sandstone IN.ppm OUT.ppm [ANGLE]
 *
 *     cc sandstone.c -o sandstone $(pkg-config --cflags --libs cmdtexture)
 */
#include <cmdtexture.h>
#include <stdio.h>
#include <stdlib.h>

/* Says why a call failed, and ends with its status, which is the one that the program would have. */
static int fail(cmdtexture_error* error) {
    int status = cmdtexture_error_status(error);
    fprintf(stderr, "sandstone: %s\n", cmdtexture_error_message(error));
    if (*cmdtexture_error_hint(error)) fprintf(stderr, "hint: %s\n", cmdtexture_error_hint(error));
    cmdtexture_error_free(error);
    return status;
}

static int read_ppm(const char* name, cmdtexture_image* image) {
    FILE* file = fopen(name, "rb");
    size_t bytes = 0;
    if (!file) return 0;
    if (fscanf(file, "P6 %d %d 255%*c", &image->width, &image->height) == 2 && image->width > 0 &&
        image->height > 0) {
        image->size = sizeof *image;
        image->layout = CMDTEXTURE_RGB;
        image->depth = 8;
        image->stride = (ptrdiff_t)image->width * 3;
        bytes = (size_t)image->stride * (size_t)image->height;
        image->pixels = malloc(bytes);
        if (image->pixels && fread(image->pixels, 1, bytes, file) != bytes) bytes = 0;
    }
    fclose(file);
    return image->pixels && bytes > 0;
}

int main(int argc, char** argv) {
    cmdtexture_library* library = NULL;
    cmdtexture_effect* effect = NULL;
    cmdtexture_error* error = NULL;
    cmdtexture_image image = {0};
    FILE* out;

    if (argc < 3 || !read_ppm(argv[1], &image)) {
        fprintf(stderr, "usage: sandstone IN.ppm OUT.ppm [ANGLE]\n");
        return 2;
    }
    if (cmdtexture_open(NULL, &library, &error)) return fail(error);
    if (cmdtexture_effect_new(library, "Sandstone", &effect, &error)) return fail(error);
    if (argc > 3 && cmdtexture_effect_set(effect, "Angle", argv[3], &error)) return fail(error);
    if (cmdtexture_effect_apply(effect, &image, &image, NULL, &error)) return fail(error);

    out = fopen(argv[2], "wb");
    if (!out || fprintf(out, "P6\n%d %d\n255\n", image.width, image.height) < 0 ||
        fwrite(image.pixels, (size_t)image.stride, (size_t)image.height, out) !=
            (size_t)image.height || fclose(out) != 0) {
        fprintf(stderr, "sandstone: %s cannot be written\n", argv[2]);
        return 5;
    }
    free(image.pixels);
    cmdtexture_effect_free(effect);
    cmdtexture_close(library);
    return 0;
}
