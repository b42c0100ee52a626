/* The extension interface used from C: ZoImgLibExt.h compiled by the C
 * compiler, linked against the shared library only. Exits with the number
 * of failed checks. */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "ZoImgLibC.h"
#include "ZoImgLibExt.h"

static int failures = 0;

#define CHECK(condition)                                                     \
    do {                                                                     \
        if (!(condition)) {                                                  \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, \
                    #condition);                                             \
            ++failures;                                                      \
        }                                                                    \
    } while (0)

static void Version(void)
{
    const char* version = ZoImgLib_GetVersion();
    CHECK(version != NULL && strcmp(version, ZO_TEST_PROJECT_VERSION) == 0);
}

int main(void)
{
    Version();
    if (failures)
        fprintf(stderr, "%d check(s) failed\n", failures);
    return failures;
}
