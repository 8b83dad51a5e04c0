/* CmdTexture for C: fourteen texture effects on pictures in memory.
 *
 *     cmdtexture_library* library = NULL;
 *     cmdtexture_effect* effect = NULL;
 *     cmdtexture_open(NULL, &library, NULL);
 *     cmdtexture_effect_new(library, "Sandstone", &effect, NULL);
 *     cmdtexture_effect_set(effect, "Angle", "30", NULL);
 *     cmdtexture_effect_apply(effect, &picture, &picture, NULL, NULL);
 *
 * Results are the same bytes as those of the program's `apply`.
 *
 * Errors. What can fail answers a status, and fills `error` unless that is NULL; the caller frees
 * the error. On success `*error` is left alone. No call prints, exits, or changes the locale,
 * signal handlers or the working directory, and no C++ exception leaves one.
 *
 * Threads. A library may be used by several threads at once, and so may an effect by calls that
 * take it as const; what changes an effect is alone with it. Effects, also of libraries in
 * different languages, run in parallel. Work inside one effect is shared among all cores.
 *
 * Strings are UTF-8 and end with a zero byte. A `const char*` belongs to the object that it was
 * asked of and lives as long as that, unless told otherwise; a `char*` or `char**` belongs to the
 * caller, who frees it with cmdtexture_free or cmdtexture_free_names.
 */
#ifndef CMDTEXTURE_H
#define CMDTEXTURE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CMDTEXTURE_API __attribute__((visibility("default")))

/* How a call ended: the numbers of the program's exit status. */
typedef enum cmdtexture_status {
    CMDTEXTURE_OK = 0,
    CMDTEXTURE_FAULT = 1,      /* a fault of this library */
    CMDTEXTURE_USAGE = 2,      /* an unknown name, a value or a picture that does not fit */
    CMDTEXTURE_UNREADABLE = 3, /* a pattern or texture whose file cannot be read */
    CMDTEXTURE_OUTPUT = 5,     /* a file that cannot be written */
    CMDTEXTURE_LIMIT = 6,      /* not enough memory */
    CMDTEXTURE_EFFECT = 7,     /* the effect reported an error, or could not be loaded */
    CMDTEXTURE_CANCELLED = 130 /* the progress function asked to stop */
} cmdtexture_status;

typedef struct cmdtexture_library cmdtexture_library;
typedef struct cmdtexture_effect cmdtexture_effect;
typedef struct cmdtexture_recipe cmdtexture_recipe;
typedef struct cmdtexture_error cmdtexture_error;

/* The version of the library that is loaded, such as "1.2.3"; lives as long as the process. */
CMDTEXTURE_API const char* cmdtexture_version(void);

/* ---- Errors ---- */

CMDTEXTURE_API cmdtexture_status cmdtexture_error_status(const cmdtexture_error* error);
/* What is wrong, and what would be right ("" when there is nothing to say): one line each. */
CMDTEXTURE_API const char* cmdtexture_error_message(const cmdtexture_error* error);
CMDTEXTURE_API const char* cmdtexture_error_hint(const cmdtexture_error* error);
/* NULL is nothing to free; so it is for all that frees below. */
CMDTEXTURE_API void cmdtexture_error_free(cmdtexture_error* error);

CMDTEXTURE_API void cmdtexture_free(char* text);
CMDTEXTURE_API void cmdtexture_free_names(char** names);

/* ---- Libraries ---- */

/* What a library is opened with. Zero is the default of every member but `size`. */
typedef struct cmdtexture_options {
    size_t size;          /* sizeof(cmdtexture_options) */
    const char* prefix;   /* of the installation; default: where this library was loaded from */
    const char* language; /* a code such as "DE"; default: the environment's */
    const char* const* resource_folders; /* looked through before the installation's own */
    size_t resource_folder_count;
    int has_range_scale; /* whether the next member counts; else the user's setting does */
    int range_scale;     /* per cent that scaled maxima grow, -99 to 900 */
} cmdtexture_options;

/* Opens the effects of an installation; `options` may be NULL. On failure `*library` is NULL. As
 * long as one is open, up to 600 MB of memory of pictures that were worked on, and never more than
 * was in use at once, is kept for the next call; the system may take it when it is short. */
CMDTEXTURE_API cmdtexture_status cmdtexture_open(const cmdtexture_options* options,
                                                 cmdtexture_library** library,
                                                 cmdtexture_error** error);
/* Effects that were made of it stay usable. */
CMDTEXTURE_API void cmdtexture_close(cmdtexture_library* library);

/* An effect, its texts in the library's language. Records of this and the next kind may grow at
 * their end; they are made by the library only. */
typedef struct cmdtexture_effect_info {
    const char* name;         /* "FineLeather": what names it everywhere, in any letter case */
    const char* display_name; /* for people */
    const char* english_name;
    const char* guid;
    const char* description;
} cmdtexture_effect_info;

CMDTEXTURE_API size_t cmdtexture_effect_count(const cmdtexture_library* library);
/* NULL for an index out of range. */
CMDTEXTURE_API const cmdtexture_effect_info* cmdtexture_effect_at(const cmdtexture_library* library,
                                                                  size_t index);
/* The code of the language that texts are in. */
CMDTEXTURE_API const char* cmdtexture_language(const cmdtexture_library* library);
/* All effects as a JSON array; one, with its parameters, as a JSON object. */
CMDTEXTURE_API char* cmdtexture_list_json(const cmdtexture_library* library,
                                          cmdtexture_error** error);
CMDTEXTURE_API char* cmdtexture_describe_json(const cmdtexture_library* library, const char* effect,
                                              cmdtexture_error** error);

/* The names of pictures that a parameter of an effect can take. */
typedef enum cmdtexture_resource {
    CMDTEXTURE_NO_RESOURCE = 0,
    CMDTEXTURE_PATTERN = 1,
    CMDTEXTURE_TEXTURE = 2
} cmdtexture_resource;

/* The patterns or textures that there are now, ordered by category and name; or the presets of an
 * effect, each of which cmdtexture_effect_set_preset takes. The last pointer is NULL. */
CMDTEXTURE_API char** cmdtexture_resource_names(const cmdtexture_library* library,
                                                cmdtexture_resource kind, cmdtexture_error** error);
CMDTEXTURE_API char** cmdtexture_preset_names(const cmdtexture_library* library, const char* effect,
                                              cmdtexture_error** error);

/* ---- Effects and their values ---- */

/* An effect with its parameters at their defaults. On failure `*effect` is NULL. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_new(const cmdtexture_library* library,
                                                       const char* name, cmdtexture_effect** effect,
                                                       cmdtexture_error** error);
/* Another effect with the same values and canvas. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_copy(const cmdtexture_effect* effect,
                                                        cmdtexture_effect** copy,
                                                        cmdtexture_error** error);
CMDTEXTURE_API void cmdtexture_effect_free(cmdtexture_effect* effect);
CMDTEXTURE_API const char* cmdtexture_effect_name(const cmdtexture_effect* effect);

typedef enum cmdtexture_type {
    CMDTEXTURE_INTEGER = 0,
    CMDTEXTURE_BOOLEAN = 1,
    CMDTEXTURE_ENUMERATION = 2,
    CMDTEXTURE_COLOUR = 3,
    CMDTEXTURE_STRING = 4
} cmdtexture_type;

typedef struct cmdtexture_parameter {
    const char* name;  /* what names it everywhere, in any letter case */
    const char* label; /* for people, in the library's language */
    const char* description;
    const char* accepts; /* "a whole number from 2 to 600" */
    cmdtexture_type type;
    int32_t minimum, maximum; /* of integers and enumerations, for the effect's canvas */
    int64_t default_number;   /* of all but strings; a colour is 0x00BBGGRR */
    const char* default_text; /* the default as a text that sets it */
    size_t member_count;      /* of an enumeration; the first has the number `minimum` */
    const char* const* members;
    cmdtexture_resource resource;     /* of a string: which pictures it names */
    const char* const* member_labels; /* what people read for the members */
} cmdtexture_parameter;

CMDTEXTURE_API size_t cmdtexture_parameter_count(const cmdtexture_effect* effect);
/* NULL for an index out of range. Lives until the canvas changes. */
CMDTEXTURE_API const cmdtexture_parameter* cmdtexture_parameter_at(const cmdtexture_effect* effect,
                                                                   size_t index);

/* Sets a parameter from a text, as `-p NAME=VALUE` of the program does: integers, true and false,
 * colours as #RRGGBB, members of an enumeration by name or number, strings. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_set(cmdtexture_effect* effect,
                                                       const char* parameter, const char* value,
                                                       cmdtexture_error** error);
/* Sets all that a JSON object of names to values holds, or nothing. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_set_json(cmdtexture_effect* effect,
                                                            const char* json,
                                                            cmdtexture_error** error);
/* Sets the values of a preset, by its name or its file. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_set_preset(cmdtexture_effect* effect,
                                                              const char* preset,
                                                              cmdtexture_error** error);
/* Brings all parameters back to their defaults. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_reset(cmdtexture_effect* effect,
                                                         cmdtexture_error** error);
/* The value of a parameter as a text that sets it; all values as a JSON object. NULL on failure. */
CMDTEXTURE_API char* cmdtexture_effect_get(const cmdtexture_effect* effect, const char* parameter,
                                           cmdtexture_error** error);
CMDTEXTURE_API char* cmdtexture_effect_get_json(const cmdtexture_effect* effect,
                                                cmdtexture_error** error);
/* The size in pixels of the document that pictures are a part of; 0 by 0 (the default) makes each
 * picture its own canvas. Sides are at most 65535. Ranges of some parameters follow it. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_set_canvas(cmdtexture_effect* effect,
                                                              int32_t width, int32_t height,
                                                              cmdtexture_error** error);

/* ---- Pictures ---- */

/* The order of a pixel's samples. Alpha is straight. */
typedef enum cmdtexture_layout {
    CMDTEXTURE_GREY = 1,
    CMDTEXTURE_GREY_ALPHA = 2,
    CMDTEXTURE_RGB = 3,
    CMDTEXTURE_RGBA = 4,
    CMDTEXTURE_BGR = 5,
    CMDTEXTURE_BGRA = 6
} cmdtexture_layout;

/* A picture in the caller's memory. Samples of 16 bits are in the machine's byte order. */
typedef struct cmdtexture_image {
    size_t size;           /* sizeof(cmdtexture_image) */
    void* pixels;          /* of the top left corner */
    ptrdiff_t stride;      /* from a row to the one below it in bytes; may be negative */
    int32_t width, height; /* 1 to 65535 pixels */
    cmdtexture_layout layout;
    int depth; /* bits a sample: 8 or 16 */
} cmdtexture_image;

/* Told of progress, 0 to 1 and never falling, on the thread that called; any answer but 0 cancels.
 */
typedef int (*cmdtexture_progress)(double fraction, void* user);

/* How an effect is run. Zero is the default of every member but `size`. */
typedef struct cmdtexture_run {
    size_t size;                /* sizeof(cmdtexture_run) */
    int32_t x, y;               /* where the picture lies on the canvas, at most 1000000 away */
    const uint8_t* selection;   /* 8-bit grey of the picture's size: 255 applies the effect in full,
                                   0 leaves the pixel; default: 255 everywhere */
    ptrdiff_t selection_stride; /* bytes */
    cmdtexture_progress progress;
    void* user; /* for `progress` */
} cmdtexture_run;

/* Runs an effect from `source` to `destination`, pictures of the same size and depth and with the
 * same channels, in any order of the colours, which may be the same memory. Both may be the same
 * picture; `run` may be NULL. `destination` is written only when all has succeeded. */
CMDTEXTURE_API cmdtexture_status cmdtexture_effect_apply(const cmdtexture_effect* effect,
                                                         const cmdtexture_image* source,
                                                         const cmdtexture_image* destination,
                                                         const cmdtexture_run* run,
                                                         cmdtexture_error** error);

/* ---- Recipes: effects one after another ---- */

/* Reads a recipe from its JSON text, and checks all of it: a list of steps, each an object with
 * "effect" and, if wanted, "preset", "parameters", "mask" (a picture file that limits the step),
 * "opacity" (0 to 1) and "blend" ("normal", "multiply", "screen", "overlay", "soft-light",
 * "luminosity"). `folder` is where files that it names are looked for; NULL is the working
 * directory. On failure `*recipe` is NULL. */
CMDTEXTURE_API cmdtexture_status cmdtexture_recipe_new(const cmdtexture_library* library,
                                                       const char* json, const char* folder,
                                                       cmdtexture_recipe** recipe,
                                                       cmdtexture_error** error);
/* The same from a file, whose folder is where the files are looked for. */
CMDTEXTURE_API cmdtexture_status cmdtexture_recipe_read(const cmdtexture_library* library,
                                                        const char* file,
                                                        cmdtexture_recipe** recipe,
                                                        cmdtexture_error** error);
CMDTEXTURE_API void cmdtexture_recipe_free(cmdtexture_recipe* recipe);
/* The steps with all their values, as a JSON array. NULL on failure. */
CMDTEXTURE_API char* cmdtexture_recipe_get_json(const cmdtexture_recipe* recipe,
                                                cmdtexture_error** error);
/* As cmdtexture_effect_set_canvas and cmdtexture_effect_apply; the selection of the run limits the
 * steps that have no mask. */
CMDTEXTURE_API cmdtexture_status cmdtexture_recipe_set_canvas(cmdtexture_recipe* recipe,
                                                              int32_t width, int32_t height,
                                                              cmdtexture_error** error);
CMDTEXTURE_API cmdtexture_status cmdtexture_recipe_apply(const cmdtexture_recipe* recipe,
                                                         const cmdtexture_image* source,
                                                         const cmdtexture_image* destination,
                                                         const cmdtexture_run* run,
                                                         cmdtexture_error** error);

#ifdef __cplusplus
}
#endif

#endif
