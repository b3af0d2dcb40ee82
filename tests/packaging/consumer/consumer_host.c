/* Adds an entry with presentation data to a section by mox_host, saves, loads and reads it. The exit code is 0 when it
 * was the same. */
#include <stdio.h>
#include <string.h>

#include "mox_host/mox_host.h"

int main(void) {
    mox_document* settings = NULL;
    mox_entry entry = {0};
    mox_save_options overwriting = {0};
    mox_list* found = NULL;
    double gain = 0;
    int isSame = 0;

    if (mox_new_settings(&settings, NULL) != MOX_OK) return 1;
    if (mox_make_section(settings, MOX_STR("Camera"), NULL, NULL) != MOX_OK) return 2;
    entry.size = sizeof entry;
    entry.type = MOX_TYPE_DOUBLE;
    entry.name = "Gain";
    entry.name_size = 4;
    entry.value = "1.5";
    entry.value_size = 3;
    entry.has_ui = 1;
    entry.control = MOX_CONTROL_NUMBER;
    entry.shown_name = "Gain";
    entry.shown_name_size = 4;
    if (mox_add_entry(settings, MOX_STR("Camera"), NULL, 0, &entry, 0, NULL) != MOX_OK) return 3;
    overwriting.size = sizeof overwriting;
    overwriting.flags = MOX_SAVE_OVERWRITE;
    if (mox_save(settings, MOX_STR("consumer_host.xml"), &overwriting, NULL) != MOX_OK) return 4;
    mox_document_free(settings);

    if (mox_open(MOX_STR("consumer_host.xml"), MOX_SETTINGS, NULL, &settings, NULL) != MOX_OK) return 5;
    if (mox_get_double(settings, MOX_STR("Camera"), MOX_STR("Gain"), &gain, NULL) != MOX_OK) return 6;
    if (mox_find_entry(settings, MOX_STR("Camera"), MOX_STR("Gain"), &found, NULL) != MOX_OK) return 7;
    if (mox_list_entry(found, 0, &entry) != MOX_OK) return 8;
    printf("gain %.1f, shown as %s\n", gain, entry.shown_name);
    isSame = entry.control == MOX_CONTROL_NUMBER && strcmp(entry.value, "1.5") == 0;
    mox_list_free(found);
    mox_document_free(settings);
    return isSame && gain == 1.5 ? 0 : 9;
}
