#pragma once

/**
 * @file
 * The framework for programs in C, and for every language that calls C. Compiles as C11 and C++20.
 *
 *     vorla_outcome* outcome = NULL;
 *     int error = vorla_run_capture(NULL, &outcome);
 *     if (error) puts(vorla_error_text(error));
 *
 * Rules that hold for every function:
 * - What may fail returns VORLA_OK or one of the VORLA_ERROR_ numbers, and has then changed nothing
 *   unless it says otherwise. `vorla_error_text` says what a number means; the log may say more.
 *   Nothing aborts, and no C++ exception leaves a function.
 * - Texts are UTF-8, ended by a zero byte. What comes in is copied; other bytes than UTF-8 are
 *   refused.
 * - A structure of options begins with its size. Fill it in with its _INIT macro. A smaller one, of
 *   an older header, is taken with defaults for what it lacks; a larger one, of a newer header,
 *   only if what is unknown here is zero.
 * - A callback comes with the pointer that was given along, which is never looked at. No lock is
 *   held during it; it may call anything here.
 * - "Any thread" and "capturing thread" say where a function may be called. The capturing thread is
 *   that of the host's QApplication; in a host without one, the thread that runs its GLib main loop
 *   or, before that runs, the process's first thread. A call from elsewhere is refused with
 *   VORLA_ERROR_WRONG_THREAD.
 * - Where two copies of the library, of one version or of two, are loaded into one process, the
 *   first to be used serves it; functions of the other return VORLA_ERROR_OTHER_COPY.
 *
 * libVorlaServices has the functions for settings, logs, statistics and crash reports, and needs no
 * toolkit. libVorla has those of the last section, for captures, and stands on it.
 */

#include <stddef.h>
#include <stdint.h>

#include <vorla/export.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Errors --------------------------------------------------------------------------------------- */

/** What functions return. The numbers stay. */
enum {
    VORLA_OK = 0,

    VORLA_ERROR_NULL = 1, /**< an argument that may not be null is: pointer, handle, callback */
    VORLA_ERROR_STRUCT_SIZE = 2,      /**< the size in a structure cannot be right */
    VORLA_ERROR_UNKNOWN_OPTION = 3,   /**< a structure asks for what this version does not know */
    VORLA_ERROR_OUT_OF_RANGE = 4,     /**< a number is none of those that have a meaning */
    VORLA_ERROR_KIND = 5,             /**< the setting is no number, or no text */
    VORLA_ERROR_BUFFER_TOO_SMALL = 6, /**< the text does not fit; its beginning was written */
    VORLA_ERROR_NOT_UTF8 = 7,         /**< a text is not UTF-8 */
    VORLA_ERROR_NOT_OWNED = 8,        /**< the outcome belongs to the callback's caller */
    VORLA_ERROR_NO_MEMORY = 9,
    VORLA_ERROR_INTERNAL = 10,      /**< a fault of the framework's; the log says which */
    VORLA_ERROR_NO_FOLDER = 11,     /**< there is no such folder, or its path is not absolute */
    VORLA_ERROR_INSTALLED = 12,     /**< crash reporting is installed already */
    VORLA_ERROR_NOT_INSTALLED = 13, /**< crash reporting is not installed */
    VORLA_ERROR_EMPTY = 14,         /**< a text that may not be empty or blank is */

    /* The capture was not started. */
    VORLA_ERROR_ALREADY_CAPTURING = 102,
    VORLA_ERROR_WRONG_THREAD = 103,
    VORLA_ERROR_OTHER_COPY = 104,
    VORLA_ERROR_NO_DISPLAY_SERVER = 105, /**< no X server answers, or Wayland alone does */
    VORLA_ERROR_SCREEN_FORMAT = 106,     /**< the depth of the screen is not supported */
    VORLA_ERROR_NO_WIDGETS = 107,        /**< the host's application object is no QApplication */
    VORLA_ERROR_PLATFORM = 108,          /**< the host's Qt does not run on "xcb" */
    VORLA_ERROR_NO_MAIN_LOOP = 109,      /**< neither Qt's nor GLib's loop can drive the session */

    /* The picture did not get to the clipboard or the file. */
    VORLA_ERROR_NO_PICTURE = 201,
    VORLA_ERROR_NOT_ENCODED = 202, /**< too large for the file type, or no memory */
    VORLA_ERROR_CLIPBOARD = 203,   /**< the desktop did not take it */
    VORLA_ERROR_PATH = 204,        /**< the file's path cannot be used */
    VORLA_ERROR_PERMISSION = 205,  /**< the file or its folder may not be written */
    VORLA_ERROR_NO_SPACE = 206,    /**< the disk is full, or a quota is used up */
    VORLA_ERROR_NOT_WRITTEN = 207  /**< writing failed in another way; the log says how */
};

/** What an error number means, in English without a full stop. Never null; a number without a
    meaning yields a text that says so. Lives as long as the process. Any thread. */
VL_EXPORT const char* vorla_error_text(int error);

/** The library's version, for instance "1.0.0". Never null. Any thread. */
VL_EXPORT const char* vorla_version(void);

/* Resources and information values ------------------------------------------------------------- */

/** Names the folder of the resources (themes in its "ThemeResources", string tables, the sound,
    "Info.json"), for hosts that keep it elsewhere than next to the library; the environment
    variable VORLA_RESOURCES does the same. Absolute. Before anything else of the framework: what
    was read already stays. VORLA_ERROR_NO_FOLDER where there is none. Any thread. */
VL_EXPORT int vorla_set_resource_folder(const char* path);

/** Copies the resource folder's path to `buffer`; see `vorla_get_info` for the buffer. Any
    thread. */
VL_EXPORT int vorla_get_resource_folder(char* buffer, size_t capacity, size_t* length);

/** Lays a value over the information dictionary for the life of the process; before the first
    capture or service starts. Keys of use to hosts: "SupplyID" (the theme), "StatisticsURL",
    "CrashSyncURL" (service addresses), "IntroduceURL". Any thread. */
VL_EXPORT int vorla_set_info(const char* key, const char* value);

/** Copies the value of a key to `buffer` as text, numbers in decimal; an empty text when there is
    none.

    At most `capacity` bytes are written, the zero byte included, and never half a character.
    `length` gets the whole text's length in bytes without the zero byte, also where
    VORLA_ERROR_BUFFER_TOO_SMALL is returned, and may be null. `buffer` may be null with a capacity
    of 0, to ask for the length. Any thread. */
VL_EXPORT int vorla_get_info(const char* key, char* buffer, size_t capacity, size_t* length);

/* Settings ------------------------------------------------------------------------------------- */

/** The user's choices, and the defaults that a product sets for them. Numbers unless marked. The
    numbers of the settings stay. */
enum {
    VORLA_SETTING_PLAY_SOUND = 0,      /**< 0 or 1; built in: 1 */
    VORLA_SETTING_HIGH_RESOLUTION = 1, /**< 0 or 1: keep all of a screen's pixels; built in: 1 */
    VORLA_SETTING_FILE_TYPE = 2,       /**< a VORLA_FILE_ number; built in: PNG */
    VORLA_SETTING_RUN_ALONE = 3,       /**< 0 or 1; built in: 1 */
    VORLA_SETTING_SAVE_FOLDER = 4, /**< text: last folder; built in: the user's desktop folder */
    VORLA_SETTING_FILE_NAME_PREFIX =
        5,                       /**< text, not stored, for this process; built in: "Vorla" */
    VORLA_SETTING_CHANNEL = 6,   /**< text: distribution channel; setting "" does nothing */
    VORLA_SETTING_THEME_NAME = 7 /**< text; its default is fixed */
};

/** Types of saved pictures. */
enum {
    VORLA_FILE_TIFF = 0,
    VORLA_FILE_BMP = 1,
    VORLA_FILE_GIF = 2,
    VORLA_FILE_JPEG = 3,
    VORLA_FILE_PNG = 4,
    VORLA_FILE_JPEG2000 = 5
};

/** Reads a setting that is a number. A stored value may lie outside the range that can be set. The
    first reading stores the default for this user. Any thread. */
VL_EXPORT int vorla_get_number(int setting, int64_t* value);
/** Stores a setting that is a number, at once. VORLA_ERROR_OUT_OF_RANGE for a value without a
    meaning. Any thread. */
VL_EXPORT int vorla_set_number(int setting, int64_t value);
/** Reads a setting that is a text; see `vorla_get_info` for the buffer. Any thread. */
VL_EXPORT int vorla_get_text(int setting, char* buffer, size_t capacity, size_t* length);
/** Stores a setting that is a text, at once. Any thread. */
VL_EXPORT int vorla_set_text(int setting, const char* value);

/** What a setting that is a number is when the user has chosen nothing. Stores nothing. Any
    thread. */
VL_EXPORT int vorla_get_default_number(int setting, int64_t* value);
/** Sets that for this process's product, before the first capture; 0 stands for the built-in
    default. A user for whom the setting is stored keeps it. VORLA_ERROR_OUT_OF_RANGE for a value
    without a meaning. Any thread. */
VL_EXPORT int vorla_set_default_number(int setting, int64_t value);
/** What a setting that is a text is when the user has chosen nothing; see `vorla_get_info` for the
    buffer. Stores nothing. Any thread. */
VL_EXPORT int vorla_get_default_text(int setting, char* buffer, size_t capacity, size_t* length);
/** Sets that for this process's product, before the first capture; the empty text stands for the
    built-in default. A user for whom the setting is stored keeps it. The theme's name has no
    default to set: VORLA_ERROR_KIND. Any thread. */
VL_EXPORT int vorla_set_default_text(int setting, const char* value);

/* Logs ----------------------------------------------------------------------------------------- */

/** Receives a log line, without its newline, on the thread that logs. The line is valid during the
    call only. */
typedef void (*vorla_log_handler)(const char* line, void* user);

/** Sends every log line, whatever the level, to `handler` instead of the system log and standard
    error. Null restores these. A line that is being logged may still reach the handler before, so
    `user` must outlive that. Any thread. */
VL_EXPORT int vorla_set_log_handler(vorla_log_handler handler, void* user);

/** What is logged where no handler is set. */
enum {
    VORLA_LOG_OFF = 0,
    VORLA_LOG_ERROR = 1, /**< something that the user or the host misses; the level at first */
    VORLA_LOG_INFO = 2,  /**< the course of events */
    VORLA_LOG_TRACE = 3  /**< lines that recur with every pointer movement */
};

/** Sets the level, which starts as the environment variable VORLA_LOG says. Any thread. */
VL_EXPORT int vorla_set_log_level(int level);

/* Usage statistics ----------------------------------------------------------------------------- */

/** Sends what earlier processes counted, in the background and where an address is set, and begins
    to count. Captures do it by themselves. Takes effect once in a process. Any thread. */
VL_EXPORT int vorla_start_statistics(void);

/** Counts a usage event of the host's own; 0 or more, and not 1000 to 1999, which are the
    framework's. Any thread. */
VL_EXPORT int vorla_count_event(int event);

/* Crash reports -------------------------------------------------------------------------------- */

/** What crash reporting is not to do. */
enum {
    VORLA_CRASH_NO_SIGNALS = 1,    /**< does not catch fatal signals */
    VORLA_CRASH_NO_EXCEPTIONS = 2, /**< does not note uncaught C++ exceptions */
    VORLA_CRASH_NO_NAMES = 4,      /**< looks up no names of the program's own functions */
    VORLA_CRASH_NO_MERGING = 8     /**< keeps each crash that repeats an earlier one */
};

/** How crashes are to be reported. Null stands for what the framework knows by itself. */
typedef struct vorla_crash_options {
    size_t size;                 /**< sizeof(vorla_crash_options) */
    const char* app_key;         /**< names the program to the server; needed */
    const char* folder;          /**< where the files are kept; absolute */
    const char* program_id;      /**< which host this is, for the server */
    const char* program_version; /**< crashes of another version are dropped */
    const char* user_id;         /**< who uses the program */
    const char* device_id;       /**< what stands for the device; a random number by default */
    const char* channel;         /**< through which channel the program is distributed */
    uint32_t flags;              /**< VORLA_CRASH_ bits */
    uint32_t reserved;           /**< 0 */
    void (*crashed)(void);       /**< called when a report is on disk: in the dying program, on the
                                      faulting thread, where it should do little and is cut short when
                                      it takes long; and in `vorla_crash_report` */
} vorla_crash_options;

/** Options with all defaults, for a variable's definition; `app_key` is still to be set. */
#define VORLA_CRASH_OPTIONS_INIT \
    { sizeof(vorla_crash_options), 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 }

/** Starts crash reporting: keeps a report of the program's death, and sends it at the next start
    where "CrashSyncURL" names an address. A capture starts it with defaults, so call it before.
    VORLA_ERROR_INSTALLED when it was started already. Any thread. */
VL_EXPORT int vorla_crash_install(const vorla_crash_options* options);
/** Takes the handlers away again. Any thread. */
VL_EXPORT int vorla_crash_uninstall(void);

/** Notes what led to a crash: the last 100 events of up to 200 characters. Any thread. */
VL_EXPORT int vorla_crash_add_event(const char* event);
/** A value that goes along with each report, under a key. Any thread. */
VL_EXPORT int vorla_crash_set_user_data(const char* key, const char* value);
/** The number of the scene that the program is in. Any thread. */
VL_EXPORT int vorla_crash_set_scene(uint64_t scene);
/** A value of the scene: at most 15 of up to 200 characters, under keys of up to 50 letters and
    digits; what goes beyond that is left out. Any thread. */
VL_EXPORT int vorla_crash_add_scene_value(const char* key, const char* value);
/** A text that goes along with each crash; 10,240 characters of it are kept. Any thread. */
VL_EXPORT int vorla_crash_attach_text(const char* text);
/** Records an error that the program has survived, like a crash. `call_stack` is a text of any
    form; null stands for the calling thread's, and the others' go along. VORLA_ERROR_NOT_INSTALLED
   before `vorla_crash_install`. Any thread. */
VL_EXPORT int vorla_crash_report(const char* name, const char* reason, const char* call_stack);
/** Gives the calling thread a stack for crash handling, so that even a thread that has used up its
    own dies with a report. Needs 100 KiB until the thread ends. Any thread. */
VL_EXPORT int vorla_crash_prepare_thread(void);
/** Whether the previous run ended by a crash: 1 or 0. After `vorla_crash_install`. Any thread. */
VL_EXPORT int vorla_crash_ended_last_run(int* value);
/** How many crashes are stored; looks at the disk. Any thread. */
VL_EXPORT int vorla_crash_count(size_t* count);

/* Captures (libVorla) -------------------------------------------------------------------------- */

/** How a capture is to be. Null in place of it stands for all defaults. */
typedef struct vorla_capture_options {
    size_t size;                  /**< sizeof(vorla_capture_options) */
    uint32_t offer_recorder;      /**< 1: offers the switch to the host's recorder. 0 at first */
    uint32_t save_without_asking; /**< 1: "save" writes to the last folder at once. 0 at first */
} vorla_capture_options;

/** Options with all defaults, for a variable's definition. */
#define VORLA_CAPTURE_OPTIONS_INIT \
    { sizeof(vorla_capture_options), 0, 0 }

/** How a capture ended. */
enum {
    VORLA_OUTCOME_NONE = 0,              /**< of a null handle */
    VORLA_OUTCOME_DELIVERED = 1,         /**< the picture is on the clipboard, or in a file */
    VORLA_OUTCOME_CANCELLED = 2,         /**< by the user or the system */
    VORLA_OUTCOME_CANCELLED_BY_HOST = 3, /**< by `vorla_cancel_capture`, or with the host's loop */
    VORLA_OUTCOME_RECORDER = 4,          /**< the user switched to the host's recorder */
    VORLA_OUTCOME_SAVE_DISMISSED = 5,    /**< the user closed the save dialog */
    VORLA_OUTCOME_FAILED = 6 /**< `vorla_outcome_error` says why; there may be a picture still */
};

/** A capture's end, read by the functions below. They work on any thread, and say
    VORLA_OUTCOME_NONE, VORLA_ERROR_NULL or null for a null handle. */
typedef struct vorla_outcome vorla_outcome;

/** One of the VORLA_OUTCOME_ numbers. */
VL_EXPORT int vorla_outcome_kind(const vorla_outcome* outcome);
/** Why the picture was not delivered; VORLA_OK unless the outcome is VORLA_OUTCOME_FAILED. */
VL_EXPORT int vorla_outcome_error(const vorla_outcome* outcome);
/** The picture as PNG and its size in bytes, null and 0 if there is none; valid as long as the
    outcome. `size` may be null. */
VL_EXPORT const void* vorla_outcome_bytes(const vorla_outcome* outcome, size_t* size);
/** The file that was written, or could not be; null for the clipboard. Valid as long as the
    outcome. */
VL_EXPORT const char* vorla_outcome_path(const vorla_outcome* outcome);
/** Frees an outcome of `vorla_run_capture`; does nothing for null. VORLA_ERROR_NOT_OWNED for one
    that a callback got. */
VL_EXPORT int vorla_outcome_free(vorla_outcome* outcome);

/** Hears how a capture ended. The outcome is valid during the call only. */
typedef void (*vorla_ended_handler)(const vorla_outcome* outcome, void* user);
/** Hears that all panels of a capture are up and painted. */
typedef void (*vorla_panels_handler)(int screens, void* user);

/** Makes everything ready that a first capture needs, and starts crash reporting and statistics.
    At launch; costs about twice the screens' pixels in memory. VORLA_ERROR_WRONG_THREAD elsewhere
    than on the capturing thread, where only the services start. */
VL_EXPORT int vorla_prepare(void);

/** Starts a capture and returns at once: every screen freezes under a panel, and the user picks.
    The host's Qt or GLib main loop drives it. `ended` is called on this thread exactly once if, and
    only if, VORLA_OK was returned: when the panels are gone and a file is written, or when the user
    closed the save dialog; not if the program ends before. May be called in a callback. Capturing
    thread. */
VL_EXPORT int vorla_start_capture(const vorla_capture_options* options, vorla_ended_handler ended,
                                  void* user);

/** Captures and returns when the session is over: for programs without a loop, and for scripts. It
    runs a loop of its own meanwhile; a host's Qt or GLib loop goes on in it. `outcome` gets the
    outcome, for `vorla_outcome_free`, on VORLA_OK, else null. In a program without an application
    object any thread may be the first to call it, and is the capturing thread from then on. */
VL_EXPORT int vorla_run_capture(const vorla_capture_options* options, vorla_outcome** outcome);

/** Whether a capture runs: 1 from its start until just before the outcome is reported, else 0. Any
    thread. */
VL_EXPORT int vorla_is_capturing(void);

/** Ends a running capture at once; its handler hears VORLA_OUTCOME_CANCELLED_BY_HOST before this
    returns. Does nothing when none runs. Capturing thread. */
VL_EXPORT int vorla_cancel_capture(void);

/** Sets who hears that the panels of a capture are up: for measuring, and for hosts that want to
    know when the screen is frozen. Null ends it. Capturing thread. */
VL_EXPORT int vorla_set_panels_handler(vorla_panels_handler handler, void* user);

#ifdef __cplusplus
}
#endif
