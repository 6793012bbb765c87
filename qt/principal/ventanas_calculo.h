// Windows the main window opens for computations over the company's movements: "Calcular" (the
// computed lines and the trace of every value), the forecast (projected balances by month as a
// chart and a table) and "Ejecutar lo vencido" (the dry run for review, then the run with a
// progress bar and a cancel button that stops between occurrences, then the run's summary).
//
// Each function is modal: it returns when the person closes its window. `padre` may be null.
// The façade must be connected, with its company set; errors the library reports are shown in
// the window (never thrown), so the caller only refreshes its views afterwards.
#pragma once

#include <cstdint>

#include "kivmovfrec/mov_frecuente.h"

class QWidget;

namespace kivmovfrec::qt {

// Computes movement `id` as SetCalculoFormulasMF does (as of its next due date, or today; prompts
// allowed, through the façade's services) and shows the date used, every line's amount in the
// movement's currency and the trace of each value (origin, date, detail). A failed computation
// shows the error and the part of the trace that was reached.
void MostrarCalculo(QWidget* padre, clsMovFrecuente& mf, int32_t id);

// The forecast window: accounts (ticked among those the scheduled movements use, or typed; none
// means all of those), range (today to twelve months on unless changed) and period (by month
// unless changed) are chosen in it; "Calcular" shows the balances as a chart and a table, with
// the notices and task lists of the range and the occurrences the run would refuse. Opening it
// simulates nothing; each "Calcular" runs one dry run (a [PedirDato] formula asks then).
void MostrarPronostico(QWidget* padre, clsMovFrecuente& mf);

// Runs the main job up to the day of `hasta` after the person reviewed its dry run, on the
// calling thread: the progress callback lets Qt handle events between occurrences, and
// "Cancelar" (or Escape, or the close box) ends the run before the next one; what was posted
// stays. Returns how many occurrences were posted (EstadoOcurrencia::Ejecutada; 0 when the
// person did not confirm or nothing was due).
int EjecutarLoVencido(QWidget* padre, clsMovFrecuente& mf, Date hasta);

}  // namespace kivmovfrec::qt
