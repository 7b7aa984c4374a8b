#pragma once

typedef struct _XDisplay Display;

// Xlib reports a broken connection through one process-wide handler that ends the
// process. For a connection registered here the loss is survivable instead: `onLost`
// runs once and every later call on that connection fails quietly. Connections not
// registered keep the handler that was there before (Qt's, or Xlib's own).
void SurviveConnectionLoss(Display* display, void (*onLost)(Display*, void*), void* data);
void ForgetConnection(Display* display);
