// The Spanish texts of the message catalogue (entries 1000–1999), in entry order.
//
// The texts are the suite's own and are kept byte for byte, including their spelling
// ("numeracíon", "elimineló", "un lista de tareas", "esto no esta admitido", "víncular",
// "Se cambio", "Se elimino"), the typographic quotes, the access-key markers "&" and the
// blanks at either end of the texts that are concatenated with others (marked kBorde).
#include <algorithm>
#include <array>

#include "resources/catalogue.h"
#include "resources/msg.h"

namespace kivmovfrec::resources {

namespace {

constexpr bool kBorde = true;

// A Spanish text asked as number n.
constexpr EntradaCatalogo Es(int n, std::string_view texto, bool bordes = false) {
  return EntradaCatalogo{1000 + n, texto, bordes};
}

using namespace msg;

constexpr auto kEntradas = std::to_array<EntradaCatalogo>({
    // Window titles and message captions.
    Es(kTituloAsientos, "Asistente de Asientos"),
    Es(kTituloComprobantes, "Asistente de Comprobantes"),
    Es(kTituloAvisos, "Avisos"),
    Es(kTituloAsientosSistema, "Asistente de Asientos"),
    Es(kTituloListaTareas, "Lista de tareas"),
    Es(kTituloItemListaTareas, "Lista de tareas"),
    Es(kTituloMovimientosFrecuentes, "Movimientos Frecuentes"),

    // Wizard: schedule choice and captions.
    Es(kAgendado, "Agendado"),
    Es(kFrecuente, "Frecuente"),
    Es(kAgendadoAlterno, "Agendado"),
    Es(kFrecuenteAlterno, "F&recuente"),
    Es(kCapVencimiento, "&Vencimiento"),

    // Amount types.
    Es(kImporteEstimado, "Estimado"),
    Es(kImporteFijo, "Fijo"),
    Es(kImporteAutomatico, "Automático"),

    // Wizard buttons.
    Es(kBotonAnterior, "&Anterior"),
    Es(kBotonSiguiente, "&Siguiente"),
    Es(kBotonFinalizar, "&Finalizar"),
    Es(kBotonCancelar, "Cancelar"),
    Es(kBotonAyuda, "A&yuda"),

    // Frequency list.
    Es(kFrecSoloEstaVez, "Sólo esta vez"),
    Es(kFrecDiaria, "Diaria"),
    Es(kFrecSemanal, "Semanal"),
    Es(kFrecQuincenal, "Quincenal"),
    Es(kFrecMensual, "Mensual"),
    Es(kFrecBimensual, "Bimensual"),
    Es(kFrecTrimestral, "Trimestral"),
    Es(kFrecCuatrimestral, "Cuatrimestral"),
    Es(kFrecSemestral, "Semestral"),
    Es(kFrecAnual, "Anual"),
    Es(kFrecDefinido, "Definido ..."),

    // Formula evaluator prompts.
    Es(kPedirImporteTotal,
       "Se requiere el importe total del movimiento ya que no se puede calcular "
       "automáticamente."),
    Es(kTasaDeCambioPara, "Tasa de cambio para [p]"),

    // Shared messages.
    Es(kConsulteAdministrador, "Consulte con el administrador del sistema."),
    Es(kErrorGrabarMovimiento, "Error al grabar el movimiento."),
    Es(kErrorCambiarEstado, "Error al cambiar el estado del movimiento."),
    Es(kErrorEliminarMovimiento, "Error al eliminar el movimiento."),
    Es(kErrorDarRealizada, "Error al dar por realizado el vencimiento de la agenda."),
    Es(kErrorCalcularFormulas, "Error al calcular las fórmulas del movimiento."),
    Es(kErrorInterpretarLeyenda, "Error al interpretar la leyenda."),

    // Shared captions.
    Es(kCapAceptar, "&Aceptar"),
    Es(kCapCancelar, "&Cancelar"),
    Es(kCapNombre, "&Nombre:"),
    Es(kCapComentario, "&Comentario:"),
    Es(kCapOcurre, "&Ocurre:"),
    Es(kCapPrimerVencimiento, "Primer &vencimiento:"),
    Es(kCapNumeroDeVeces, "Núme&ro de veces:"),
    Es(kCapUltimaFecha, "Ú&ltima fecha:"),
    Es(kCapNotificar, "No&tificar:"),
    Es(kCapSoloEstaEmpresa, "Mo&strar sólo para esta empresa"),

    // Formula engine.
    Es(kFormulaSinResultado, "Fórmula sin resultado"),
    Es(kFormulaSinResultadoPata, "Formula sin resultado"),
    Es(kFormulasDeLeyendas, "Fórmulas de leyendas"),

    // Schedule summaries, concatenated with dates and counts.
    Es(kPostergado, "Postergado ", kBorde),
    Es(kSeInicioEl, "Se inició el ", kBorde),
    Es(kYaOcurrio, "Ya ocurrió ", kBorde),
    Es(kVeces, " veces.", kBorde),

    // Movement wizard.
    Es(kCapLeyenda, "&Leyenda:"),
    Es(kCapLibro, "Li&bro:"),
    Es(kCapTipoImporte, "Tipo de &Importe:"),
    Es(kCapAsiento, "Asi&ento:"),
    Es(kCapAutoriza, "A&utoriza:"),
    Es(kCapAsociarImagen, "As&ociar imagen:"),
    Es(kCapTipo, "Ti&po:"),
    Es(kVincularMovimiento, "&Vincular Movimiento..."),
    Es(kVerVinculos, "&Ver Vínculos..."),
    Es(kCapDetalle, "D&etalle:"),
    Es(kCapContacto, "&Contacto:"),
    Es(kCapTipoComprobante, "Ti&po de Comprobante:"),
    Es(kCapComprobante, "Compro&bante:"),
    Es(kCapMoneda, "Mone&da:"),
    Es(kCapTCa, "&TC a [p]:"),
    Es(kCapUsuario, "&Usuario:"),
    Es(kCapPara, "&Para:"),
    Es(kCapHora, "&Hora:"),
    Es(kEncabezadoCuentas, "<Cuenta|>Debe|>Haber|T.Cambio"),
    Es(kCuentasDelAsiento, "Cuentas del asiento"),
    Es(kCuentasDelComprobante, "Cuentas del comprobante"),
    Es(kEditarFormula, "Editar formula"),
    Es(kCapCuentaRenglon, "C&uenta:"),
    Es(kCapDebe, "&Debe:"),
    Es(kCapHaber, "&Haber:"),
    Es(kCapTipoCambioRenglon, "&Tipo de cambio:"),
    Es(kCapValorTC, "Coti&zación:"),
    Es(kCapDetalleRenglon, "Deta&lle:"),
    Es(kErrorEdicionGrilla, "Error al ingresar a la edición de la grilla."),
    Es(kErrorAplicarEdicion, "Error al aplicar la edición."),
    Es(kErrorMoverFila, "Error al cambiar de posición la fila en la grilla."),
    Es(kErrorCargarFormulas, "Error al cargar las fórmulas en la lista."),
    Es(kErrorTamanoPermitido, "Error el valor ingresado supera el tamaño permitido."),
    Es(kBotonAplicarRenglon, "A&plicar"),
    Es(kBotonDeshacerRenglon, "Desha&cer"),
    Es(kBotonSubir, "Su&bir"),
    Es(kBotonBajar, "Ba&jar"),
    Es(kVerifiqueAntesDeGrabar, "Verifique los datos antes de grabar."),
    Es(kAgendadoVidaPropia,
       "El movimiento agendado tiene vida propia, por lo tanto no se puede víncular a más de 1."),
    Es(kAyudaSubir, "Sube la fila elegida un lugar."),
    Es(kAyudaBajar, "Baja la fila elegida un lugar."),
    Es(kAyudaQuitarRenglon, "Quita la fila elegida del movimiento."),
    Es(kAyudaAplicarRenglon, "Pasa a la grilla lo escrito en la fila."),
    Es(kAyudaDeshacerRenglon, "Descarta lo escrito y deja la fila como estaba."),
    Es(kCapSoloEstaEmpresaAsistente, "Mostrar sólo para esta e&mpresa"),

    // Task lists.
    Es(kImportanciaObligatorio, "1 - Obligatorio"),
    Es(kImportanciaMuyImportante, "2 - Muy importante"),
    Es(kImportanciaImportante, "3 - Importante"),
    Es(kImportanciaNormal, "4 - Normal"),
    Es(kImportanciaPrescindible, "5 - Prescindible"),
    Es(kAyudaNombreLista, "Ingrese el nombre de la lista de tareas."),
    Es(kAyudaComentarioLista, "Ingrese un comentario."),
    Es(kAyudaFrecuenciaLista, "Seleccione con qué frecuencia ocurrirá la lista de tareas."),
    Es(kAyudaVencimientoLista, "Indique el vencimiento de la lista de tareas ."),
    Es(kAyudaNotificarLista, "Ingrese la fecha de notificación."),
    Es(kAyudaNumeroDeVeces,
       "Indique el vencimiento de la frecuencia en cantidad de ocurrencias, afectará la última "
       "fecha."),
    Es(kAyudaUltimaFecha, "Indique cuándo será la fecha final de la recurrencia."),
    Es(kAyudaSoloEstaEmpresa,
       "Indique si desea visualizar la lista de tareas en todas las empresas."),
    Es(kAyudaNombreItem, "Ingrese el nombre del ítem."),
    Es(kAyudaComentarioItem, "Ingrese un comentario para el ítem."),
    Es(kAyudaImportancia, "Categorice la importancia de este ítem."),
    Es(kAyudaPrecede,
       "Indique si este ítem se realizará con fecha posterior a alguna lista de tareas."),
    Es(kAyudaRealizado, "Indique si el ítem está realizado."),
    Es(kAyudaItems, "Ítems de la lista de tareas."),
    Es(kCapNombreItem, "Nom&bre:"),
    Es(kCapComentarioItem, "Co&mentario:"),
    Es(kCapImportancia, "&Importancia:"),
    Es(kCapPrecede, "&Precede a:"),
    Es(kCapRealizado, "Reali&zado"),
    Es(kEncabezadoItems, "|Ítems|"),
    Es(kBotonNuevo, "N&uevo"),
    Es(kBotonEditar, "E&ditar"),
    Es(kBotonEliminar, "&Eliminar"),
    Es(kBotonGuardarItem, "&Guardar"),
    Es(kBotonDescartarItem, "&Descartar"),
    Es(kConfirmaCumplirLista, "¿Confirma dar por cumplida la lista de tareas?"),
    Es(kListaDuplicada,
       "Duplicación de datos ya que existe un lista de tareas con el mismo nombre, modifique "
       "este dato."),
    Es(kCampoObligatorio, "Campo obligatorio, no se puede grabar si en el mismo."),
    Es(kComillaSimple,
       "El campo ingresado posee una comilla simple, el mismo es un carácter reservado; "
       "elimineló."),
    Es(kItemDuplicado,
       "Nombre de ítem duplicado, ya hay uno ingresado en la grilla con ese nombre."),
    Es(kConfirmaEliminarItem, "¿Confirma eliminar el ítem seleccionado?"),
    Es(kConfirmaGrabarLista, "¿Confirma almacenar los datos de la lista de tareas?"),

    // Linked movements.
    Es(kTituloVincular, "Vincular movimientos"),
    Es(kCapMovimientos, "&Movimientos:"),
    Es(kFiltroTodos, "(Todos)"),
    Es(kFiltroAsientos, "Asientos"),
    Es(kFiltroComprobantes, "Comprobantes"),
    Es(kCapTodasMisEmpresas, "Ver los de &todas mis empresas"),
    Es(kBotonContinuar, "C&ontinuar"),
    Es(kEncabezadoVincular, "|^Orden||Nombre|Empresa"),
    Es(kTipoAsiento, "asiento"),
    Es(kTipoComprobante, "comprobante"),
    Es(kMiMovimiento, "«Mi Movimiento»"),
    Es(kMarcoOrden, "Establecer Orden de Ejecución de los Movimientos"),
    Es(kAyudaOrden, "Ingrese o modifique el orden de ejecución de los movimientos."),
    Es(kVinculoConSusVinculados, "Ud. vinculó el movimiento y a sus vinculados."),
    Es(kYaVinculado, "Este movimiento ya está vinculado."),
    Es(kOrdenIncorrecto, "El orden establecido no es correcto."),
    Es(kVerifiqueOrden,
       "Verifique que todos los movimientos tengan un orden y que los mismos no se dupliquen."),
    Es(kVinculadoEsAgendado, "El movimiento vinculado es del tipo agendado."),
    Es(kConvertirAAgendado,
       "¿Desea convertir este al tipo agendado y copiar la agenda del movimiento vinculado?"),
    Es(kCopiarAgenda, "¿Desea copiar la agenda del movimiento vinculado?"),
    Es(kSeCambioAgenda, "Se cambio la agenda."),
    Es(kCambiarAgendasVinculadas,
       " ¿Desea cambiarla en aquellas agendas vinculadas que eran iguales a la anterior?", kBorde),
    Es(kSeEliminoAgenda, "Se elimino la agenda."),
    Es(kEliminarAgendasVinculadas,
       " ¿Desea eliminar las agendas vinculadas que eran iguales a la anterior?", kBorde),
    Es(kVinculosParInvalido,
       "Los vínculos no son válidos: el par [p] no tiene la forma movimiento:orden."),
    Es(kVinculosOrdenFuera,
       "Los vínculos no son válidos: el orden del par [p] debe estar entre 1 y 255."),
    Es(kVinculosRepetido,
       "Los vínculos no son válidos: el movimiento del par [p] figura más de una vez."),

    // Formula editor.
    Es(kTituloAgregarFormula, "Agregar fórmula"),
    Es(kAtras, "Atrás"),
    Es(kInicio, "Inicio"),
    Es(kTituloPedirDato, "Pedir dato"),
    Es(kIngreseCaracteristica, "Ingrese una característica para pedir el dato."),
    Es(kEncabezadoFormulas, "Fórmula|Descripción"),
    Es(kEncabezadoLeyendas, "Fórmula|Descripción|Ejemplo"),
    Es(kBotonAgregarFormula, "A&gregar"),
    Es(kEncabezadoElegirDato, "[p]"),
    Es(kFormulaNoLegible, "No se puede leer la fórmula en la posición [p]."),

    // User picker.
    Es(kTituloSeleccionUsuarios, "Selección de usuarios"),
    Es(kEncabezadoUsuarios, "Para|Identificación|Nombre"),

    // Frequency editor.
    Es(kTituloFrecuencia, "Frecuencia"),
    Es(kCapRepetir, "&Repetir:"),
    Es(kUnidadDias, "Cada tantos días"),
    Es(kUnidadSemanas, "Cada tantas semanas"),
    Es(kUnidadMeses, "Cada tantos meses"),
    Es(kUnidadAnios, "Cada tantos años"),
    Es(kUnidadDiaDeLaSemana, "Un día de la semana del mes"),
    Es(kUnidadUltimoDiaHabil, "El último día hábil del mes"),
    Es(kCapCada, "Ca&da:"),
    Es(kCapOrdinal, "&El:"),
    Es(kOrdinalPrimer, "primer"),
    Es(kOrdinalSegundo, "segundo"),
    Es(kOrdinalTercer, "tercer"),
    Es(kOrdinalCuarto, "cuarto"),
    Es(kOrdinalUltimo, "último"),
    Es(kCapDiaSemana, "Día de la se&mana:"),
    Es(kLunes, "lunes"),
    Es(kMartes, "martes"),
    Es(kMiercoles, "miércoles"),
    Es(kJueves, "jueves"),
    Es(kViernes, "viernes"),
    Es(kSabado, "sábado"),
    Es(kDomingo, "domingo"),
    Es(kCapFinDeSemana, "Si cae en &fin de semana:"),
    Es(kNoMover, "Dejarlo ese día"),
    Es(kDiaHabilSiguiente, "Pasarlo al día hábil siguiente"),
    Es(kDiaHabilAnterior, "Pasarlo al día hábil anterior"),
    Es(kCapDesde, "De&sde:"),
    Es(kCapProximos, "Próximos vencimientos:"),
    Es(kAyudaCada, "Indique cada cuántos días, semanas, meses o años se repite."),

    // Wizard: who owns an entry.
    Es(kClasificacionNormal, "Del usuario"),
    Es(kClasificacionSistema, "Del sistema"),

    // Questions.
    Es(kConfirmaGrabarAsiento, "¿Confirma grabar los datos para el asiento?"),
    Es(kConfirmaGrabarComprobante, "¿Confirma grabar los datos para el comprobante?"),
    Es(kConfirmaGrabarAviso, "¿Confirma grabar los datos para el aviso?"),
    Es(kConfirmaEliminarRegistro, "¿Confirma eliminar el registro?"),
    Es(kConfirmaEnviarPapelera, "¿Confirma enviar a la papelera?"),
    Es(kConfirmaCambiarEstado, "¿Confirma cambiar el estado del registro?"),
    Es(kContactoPrivado,
       "“[p]” es un contacto privado.\n"
       "Si Ud. pasa un comprobante pasará a ser público y todos los usuarios podrán acceder a "
       "ver la información del contacto.\n"
       "¿Quiere pasar al contacto como público?"),

    // Validation messages.
    Es(kCampoNoValido, "El campo ingresado no es válido."),
    Es(kTipoImporteNumeracion,
       "No puede seleccionar ese tipo de importe ya que el tipo de comprobante tiene "
       "numeracíon obligatoria."),
    Es(kCuentaDebeYHaber, "Debe ingresar por lo menos una cuenta al debe y otra al haber."),
    Es(kFxMismaCuenta, "No se puede incluir en la fórmula la misma cuenta."),
    Es(kFxValorNoValido,
       "La fórmula contiene un valor que no es válido o el registro al cual hacía referencia no "
       "existe más."),
    Es(kFxDiferenciaConOtros,
       "La fórmula diferencia no puede incluir otros valores, edite y quite los otros datos."),
    Es(kFxRestoEnVariasCuentas, "No se puede incluir la fórmula resto en más de una cuenta."),
    Es(kFxReferenciaCruzada,
       "La fórmula de esta cuenta apunta a otra que la apunta a ella, esto no esta admitido."),
    Es(kSumatoriaNoCoincide, "La sumatoria de cada columna no coincide con la otra."),
    Es(kCuentasImporteCero,
       "Existen cuentas con importe cero, esto implica que el tipo de importe para el "
       "movimiento sea considerado como Estimado."),
    Es(kFxDiferenciaEImporteEnColumnas,
       "No se pueden incluir las fórmulas por diferencia e importe del movimiento en distintas "
       "columnas."),
    Es(kFechaHastaMenor,
       "La fecha Hasta es menor al primer vencimiento ó a la fecha de notificación."),
    Es(kEditeFrecuencia, "Edite la frecuencia."),
    Es(kUsuariosDuplicados, "Duplicación de usuarios a quien le esta destinando el aviso."),
    Es(kCuentaYaIngresada, "La cuenta ya está ingresada en la lista."),
    Es(kEliminarFilaEditada, "Desea eliminar la fila editada."),
    Es(kIngreseCuenta, "Ingrese una cuenta."),
    Es(kIngreseValorDebeHaber, "Ingrese un valor al debe o al haber."),
    Es(kReemplazarFormula,
       "¿Desea ingresar una nueva fórmula y descartar la que ya tiene ingresada?"),
    Es(kSeleccioneTipoCambio, "Seleccione un tipo de cambio."),
    Es(kNotificacionImporteFijo,
       "No se puede asignar importe fijo y automático a una notificación."),
    Es(kDiferenciaNotificar,
       "La diferencia en días para notificar no puede ser mayor que 255, debe modificar la "
       "fecha."),
    Es(kNotificacionAntesDeVencimiento,
       "La fecha de notificación debe ser menor al próximo vencimiento."),
    Es(kVinculadoEliminado, "Alguno de los movimientos vinculados fue eliminado."),
    Es(kMasDeUnAgendado, "No se pueden establecer vínculos con más de 1 movimiento agendado."),
    Es(kSinDerechos, "Su usuario no está habilitado para acceder a ésta opción."),
    Es(kNoEliminarVinculado,
       "No puede eliminar un movimiento vinculado, para eliminarlo primero debe quitar los "
       "vínculos."),

    // Error texts.
    Es(kContadorTablaFallido, "Resultado de la función get_TableCounter = -1"),
    Es(kErrorCargarAsistente, "Error al cargar los datos en el asistente."),
    Es(kErrorInicializarPanel, "Error al inicializar el panel del wizard."),
    Es(kErrorSetearPanel, "Error al setear los componentes del panel."),
    Es(kErrorValidarPanel, "Error al validar la información ingresada en el panel."),
});

// Lookups binary-search the table: it must stay sorted with each entry number once.
static_assert(std::adjacent_find(kEntradas.begin(), kEntradas.end(),
                                 [](const EntradaCatalogo& a, const EntradaCatalogo& b) {
                                   return a.entrada >= b.entrada;
                                 }) == kEntradas.end(),
              "catalogue entries must be in strictly increasing order");

}  // namespace

std::span<const EntradaCatalogo> Entradas() {
  return kEntradas;
}

}  // namespace kivmovfrec::resources
