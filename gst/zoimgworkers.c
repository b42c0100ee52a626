#include "zoimgworkers.h"

struct ZoImgWorkers {
  GMutex lock;
  GCond wake;                   /* a new run or quit */
  GCond done;                   /* the last part of a run returned */
  guint count;
  GThread **threads;            /* count - 1 */
  guint64 generation;           /* raised by every run */
  guint pending;                /* worker parts of the current run not yet returned */
  gboolean quit;
  ZoImgWorkFunc func;
  gpointer task;
};

typedef struct {
  ZoImgWorkers *workers;
  guint part;
} WorkerStart;

static gpointer
worker_main (gpointer data)
{
  WorkerStart *start = data;
  ZoImgWorkers *w = start->workers;
  guint part = start->part;
  guint64 seen = 0;

  g_free (start);
  g_mutex_lock (&w->lock);
  for (;;) {
    while (w->generation == seen && !w->quit)
      g_cond_wait (&w->wake, &w->lock);
    if (w->quit)
      break;
    seen = w->generation;
    g_mutex_unlock (&w->lock);
    w->func (w->task, part, w->count);
    g_mutex_lock (&w->lock);
    if (--w->pending == 0)
      g_cond_signal (&w->done);
  }
  g_mutex_unlock (&w->lock);
  return NULL;
}

ZoImgWorkers *
zoimg_workers_new (guint count)
{
  ZoImgWorkers *w = g_new0 (ZoImgWorkers, 1);
  guint i;

  g_mutex_init (&w->lock);
  g_cond_init (&w->wake);
  g_cond_init (&w->done);
  w->count = MAX (count, 1);
  w->threads = g_new0 (GThread *, w->count);
  for (i = 1; i < w->count; i++) {
    WorkerStart *start = g_new (WorkerStart, 1);
    start->workers = w;
    start->part = i;
    w->threads[i - 1] = g_thread_new ("zoimgconvert", worker_main, start);
  }
  return w;
}

void
zoimg_workers_free (ZoImgWorkers * w)
{
  guint i;

  if (w == NULL)
    return;
  g_mutex_lock (&w->lock);
  w->quit = TRUE;
  g_cond_broadcast (&w->wake);
  g_mutex_unlock (&w->lock);
  for (i = 1; i < w->count; i++)
    g_thread_join (w->threads[i - 1]);
  g_free (w->threads);
  g_cond_clear (&w->done);
  g_cond_clear (&w->wake);
  g_mutex_clear (&w->lock);
  g_free (w);
}

guint
zoimg_workers_count (const ZoImgWorkers * w)
{
  return w->count;
}

void
zoimg_workers_run (ZoImgWorkers * w, ZoImgWorkFunc func, gpointer task)
{
  if (w->count > 1) {
    g_mutex_lock (&w->lock);
    w->func = func;
    w->task = task;
    w->pending = w->count - 1;
    w->generation++;
    g_cond_broadcast (&w->wake);
    g_mutex_unlock (&w->lock);
  }
  func (task, 0, w->count);
  if (w->count > 1) {
    g_mutex_lock (&w->lock);
    while (w->pending > 0)
      g_cond_wait (&w->done, &w->lock);
    g_mutex_unlock (&w->lock);
  }
}
