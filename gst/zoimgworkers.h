/* A fixed set of worker threads that run one task on all of them at once:
 * the calling thread takes part 0 and the workers parts 1 .. count - 1. */
#ifndef ZOIMG_GST_WORKERS_H
#define ZOIMG_GST_WORKERS_H

#include <glib.h>

G_BEGIN_DECLS

typedef struct ZoImgWorkers ZoImgWorkers;

/* Called once for each part, part in 0 .. count - 1, on different threads. */
typedef void (*ZoImgWorkFunc) (gpointer task, guint part, guint count);

/* A set of `count` parts (count - 1 threads started now; count >= 1). */
ZoImgWorkers *zoimg_workers_new (guint count);
/* Stops and joins the threads. NULL is ignored. */
void zoimg_workers_free (ZoImgWorkers * workers);
guint zoimg_workers_count (const ZoImgWorkers * workers);
/* Runs func on every part and returns when all parts have returned. One
 * run at a time per set. */
void zoimg_workers_run (ZoImgWorkers * workers, ZoImgWorkFunc func, gpointer task);

G_END_DECLS

#endif
