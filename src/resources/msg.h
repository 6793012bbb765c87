// Catalogue numbers of every text the component shows, as asked by code (entry − 1000 for the
// Spanish texts; see resources/catalogue.h). Callers write Texto(msg::kSinDerechos), never a bare
// number. Every constant here has a text in the catalogue, and every catalogue entry has exactly
// one constant here.
#pragma once

namespace kivmovfrec::msg {

// --- Window titles and message captions -------------------------------------------------------
inline constexpr int kTituloAsientos = 0;               // Asistente de Asientos
inline constexpr int kTituloComprobantes = 1;           // Asistente de Comprobantes
inline constexpr int kTituloAvisos = 2;                 // Avisos
inline constexpr int kTituloAsientosSistema = 3;        // Asistente de Asientos (system entries)
inline constexpr int kTituloListaTareas = 4;            // Lista de tareas
inline constexpr int kTituloItemListaTareas = 5;        // Lista de tareas (task-list items)
inline constexpr int kTituloMovimientosFrecuentes = 7;  // Movimientos Frecuentes

// Title of the messages about a movement of type `tipo` (1..6, enuTipoMovFrec and 6 = item).
constexpr int TituloDeTipo(int tipo) {
  return tipo - 1;
}

// --- Wizard: schedule choice and captions with fixed numbers ----------------------------------
inline constexpr int kAgendado = 27;          // Agendado
inline constexpr int kFrecuente = 28;         // Frecuente
inline constexpr int kAgendadoAlterno = 67;   // Agendado
inline constexpr int kFrecuenteAlterno = 68;  // F&recuente
inline constexpr int kCapVencimiento = 89;    // &Vencimiento (frequency "Sólo esta vez")

// --- Amount types (cfTipoImporte) --------------------------------------------------------------
inline constexpr int kImporteEstimado = 101;
inline constexpr int kImporteFijo = 102;
inline constexpr int kImporteAutomatico = 103;

// --- Wizard buttons ----------------------------------------------------------------------------
inline constexpr int kBotonAnterior = 300;
inline constexpr int kBotonSiguiente = 301;
inline constexpr int kBotonFinalizar = 302;
inline constexpr int kBotonCancelar = 303;  // Cancelar
inline constexpr int kBotonAyuda = 304;     // A&yuda

// --- Frequency list (item data: the frequency code) --------------------------------------------
inline constexpr int kFrecSoloEstaVez = 400;
inline constexpr int kFrecDiaria = 401;
inline constexpr int kFrecSemanal = 402;
inline constexpr int kFrecQuincenal = 403;
inline constexpr int kFrecMensual = 404;
inline constexpr int kFrecBimensual = 405;
inline constexpr int kFrecTrimestral = 406;
inline constexpr int kFrecCuatrimestral = 407;
inline constexpr int kFrecSemestral = 408;
inline constexpr int kFrecAnual = 409;
inline constexpr int kFrecDefinido = 410;

// --- Formula evaluator prompts -----------------------------------------------------------------
inline constexpr int kPedirImporteTotal = 472;  // asked when [ImpMov] cannot be computed
inline constexpr int kTasaDeCambioPara = 473;   // "[p]" = currency symbol

// --- Shared messages (own numbers) -------------------------------------------------------------
inline constexpr int kConsulteAdministrador = 500;  // second line of kSinDerechos
// The action a façade member was doing when it trapped an error (the error's own text follows
// on a second line).
inline constexpr int kErrorGrabarMovimiento = 501;
inline constexpr int kErrorCambiarEstado = 502;
inline constexpr int kErrorEliminarMovimiento = 503;
inline constexpr int kErrorDarRealizada = 504;
inline constexpr int kErrorCalcularFormulas = 505;
inline constexpr int kErrorInterpretarLeyenda = 506;

// --- Shared captions (own numbers) -------------------------------------------------------------
inline constexpr int kCapAceptar = 510;            // &Aceptar
inline constexpr int kCapCancelar = 511;           // &Cancelar
inline constexpr int kCapNombre = 512;             // &Nombre:
inline constexpr int kCapComentario = 513;         // &Comentario:
inline constexpr int kCapOcurre = 514;             // &Ocurre:
inline constexpr int kCapPrimerVencimiento = 515;  // Primer &vencimiento:
inline constexpr int kCapNumeroDeVeces = 516;      // Núme&ro de veces:
inline constexpr int kCapUltimaFecha = 517;        // Última fec&ha:
inline constexpr int kCapNotificar = 518;          // No&tificar:
inline constexpr int kCapSoloEstaEmpresa = 519;    // Mo&strar sólo para esta empresa

// --- Formula engine (own numbers) --------------------------------------------------------------
inline constexpr int kFormulaSinResultado = 530;      // Fórmula sin resultado (line evaluation)
inline constexpr int kFormulaSinResultadoPata = 531;  // Formula sin resultado (one-leg value)
inline constexpr int kFormulasDeLeyendas = 532;       // group of the legend macros

// --- Schedule summaries (own numbers; joined with other text) ---------------------------------
inline constexpr int kPostergado = 540;  // "Postergado " + date
inline constexpr int kSeInicioEl = 541;  // "Se inició el " + long date
inline constexpr int kYaOcurrio = 542;   // "Ya ocurrió " + n + " veces."
inline constexpr int kVeces = 543;

// --- Movement wizard (own numbers) -------------------------------------------------------------
inline constexpr int kCapLeyenda = 550;
inline constexpr int kCapLibro = 551;
inline constexpr int kCapTipoImporte = 552;
inline constexpr int kCapAsiento = 553;
inline constexpr int kCapAutoriza = 554;
inline constexpr int kCapAsociarImagen = 555;
inline constexpr int kCapTipo = 556;
inline constexpr int kVincularMovimiento = 557;  // link label
inline constexpr int kVerVinculos = 558;         // link label
inline constexpr int kCapDetalle = 559;
inline constexpr int kCapContacto = 560;
inline constexpr int kCapTipoComprobante = 561;
inline constexpr int kCapComprobante = 562;
inline constexpr int kCapMoneda = 563;
inline constexpr int kCapTCa = 564;  // "[p]" = currency
inline constexpr int kCapUsuario = 565;
inline constexpr int kCapPara = 566;
inline constexpr int kCapHora = 567;
inline constexpr int kEncabezadoCuentas = 570;      // grid header of the lines grid
inline constexpr int kCuentasDelAsiento = 571;      // panel caption
inline constexpr int kCuentasDelComprobante = 572;  // panel caption
inline constexpr int kEditarFormula = 573;          // link label hlFormula
// The edit strip of the lines grid and its menu buttons.
inline constexpr int kCapCuentaRenglon = 574;
inline constexpr int kCapDebe = 575;
inline constexpr int kCapHaber = 576;
inline constexpr int kCapTipoCambioRenglon = 577;
inline constexpr int kCapValorTC = 578;
inline constexpr int kCapDetalleRenglon = 579;
inline constexpr int kBotonAplicarRenglon = 585;
inline constexpr int kBotonDeshacerRenglon = 586;
inline constexpr int kBotonSubir = 587;
inline constexpr int kBotonBajar = 588;
inline constexpr int kAyudaSubir = 592;
inline constexpr int kAyudaBajar = 593;
inline constexpr int kAyudaQuitarRenglon = 594;
inline constexpr int kAyudaAplicarRenglon = 595;
inline constexpr int kAyudaDeshacerRenglon = 596;
// The wizard's "Mostrar sólo para esta empresa" (its access key is taken by "&Siguiente").
inline constexpr int kCapSoloEstaEmpresaAsistente = 597;
inline constexpr int kErrorEdicionGrilla = 580;
inline constexpr int kErrorAplicarEdicion = 581;
inline constexpr int kErrorMoverFila = 582;
inline constexpr int kErrorCargarFormulas = 583;
inline constexpr int kErrorTamanoPermitido = 584;
inline constexpr int kVerifiqueAntesDeGrabar = 590;  // second line of kVinculadoEliminado
inline constexpr int kAgendadoVidaPropia = 591;      // second line of kMasDeUnAgendado

// --- Task lists (own numbers) ------------------------------------------------------------------
inline constexpr int kImportanciaObligatorio = 601;
inline constexpr int kImportanciaMuyImportante = 602;
inline constexpr int kImportanciaImportante = 603;
inline constexpr int kImportanciaNormal = 604;
inline constexpr int kImportanciaPrescindible = 605;

// Caption of importance `valor` (1..5).
constexpr int Importancia(int valor) {
  return kImportanciaObligatorio - 1 + valor;
}

inline constexpr int kAyudaNombreLista = 610;
inline constexpr int kAyudaComentarioLista = 611;
inline constexpr int kAyudaFrecuenciaLista = 612;
inline constexpr int kAyudaVencimientoLista = 613;
inline constexpr int kAyudaNotificarLista = 614;
inline constexpr int kAyudaNumeroDeVeces = 615;
inline constexpr int kAyudaUltimaFecha = 616;
inline constexpr int kAyudaSoloEstaEmpresa = 617;
inline constexpr int kAyudaNombreItem = 618;
inline constexpr int kAyudaComentarioItem = 619;
inline constexpr int kAyudaImportancia = 620;
inline constexpr int kAyudaPrecede = 621;
inline constexpr int kAyudaRealizado = 622;
inline constexpr int kAyudaItems = 623;
inline constexpr int kCapNombreItem = 625;
inline constexpr int kCapComentarioItem = 626;
inline constexpr int kCapImportancia = 627;
inline constexpr int kCapPrecede = 628;
inline constexpr int kCapRealizado = 629;
inline constexpr int kEncabezadoItems = 630;
inline constexpr int kBotonNuevo = 631;
inline constexpr int kBotonEditar = 632;
inline constexpr int kBotonEliminar = 633;
// bfEdit and bfDelCancel while an item is edited: the list's own buttons already use the access
// keys of "&Aceptar" and "&Cancelar" ("&Comentario:").
inline constexpr int kBotonGuardarItem = 634;
inline constexpr int kBotonDescartarItem = 635;
inline constexpr int kConfirmaCumplirLista = 640;
inline constexpr int kListaDuplicada = 641;
inline constexpr int kCampoObligatorio = 642;
inline constexpr int kComillaSimple = 643;
inline constexpr int kItemDuplicado = 644;
inline constexpr int kConfirmaEliminarItem = 645;
inline constexpr int kConfirmaGrabarLista = 646;

// --- Linked movements (own numbers) ------------------------------------------------------------
inline constexpr int kTituloVincular = 650;
inline constexpr int kCapMovimientos = 651;
inline constexpr int kFiltroTodos = 652;
inline constexpr int kFiltroAsientos = 653;
inline constexpr int kFiltroComprobantes = 654;
inline constexpr int kCapTodasMisEmpresas = 655;
inline constexpr int kBotonContinuar = 656;
inline constexpr int kEncabezadoVincular = 657;
inline constexpr int kTipoAsiento = 658;      // kind shown in the grid
inline constexpr int kTipoComprobante = 659;  // kind shown in the grid
inline constexpr int kMiMovimiento = 660;     // row of the movement being edited
inline constexpr int kMarcoOrden = 661;
inline constexpr int kAyudaOrden = 662;
inline constexpr int kVinculoConSusVinculados = 665;
inline constexpr int kYaVinculado = 666;
inline constexpr int kOrdenIncorrecto = 667;
inline constexpr int kVerifiqueOrden = 668;  // second line of kOrdenIncorrecto
inline constexpr int kVinculadoEsAgendado = 669;
inline constexpr int kConvertirAAgendado = 670;  // second line of kVinculadoEsAgendado
inline constexpr int kCopiarAgenda = 671;        // second line of kVinculadoEsAgendado
inline constexpr int kSeCambioAgenda = 672;
inline constexpr int kCambiarAgendasVinculadas = 673;  // second line, begins with a blank
inline constexpr int kSeEliminoAgenda = 674;
inline constexpr int kEliminarAgendasVinculadas = 675;  // second line, begins with a blank
// A link text that cannot be read; [p] is the position of the offending pair.
inline constexpr int kVinculosParInvalido = 676;
inline constexpr int kVinculosOrdenFuera = 677;
inline constexpr int kVinculosRepetido = 678;

// --- Formula editor (own numbers) --------------------------------------------------------------
inline constexpr int kTituloAgregarFormula = 680;
inline constexpr int kAtras = 681;
inline constexpr int kInicio = 682;
inline constexpr int kTituloPedirDato = 683;
inline constexpr int kIngreseCaracteristica = 684;
inline constexpr int kEncabezadoFormulas = 685;    // vsGrid, line formulas
inline constexpr int kEncabezadoLeyendas = 686;    // vsGrid, legend macros
inline constexpr int kBotonAgregarFormula = 687;   // opens a group or adds the chosen entry
inline constexpr int kEncabezadoElegirDato = 688;  // pick list header: [p] = the entry's caption
inline constexpr int kFormulaNoLegible = 689;      // [p] = character position

// --- User picker (own numbers) -----------------------------------------------------------------
inline constexpr int kTituloSeleccionUsuarios = 690;
inline constexpr int kEncabezadoUsuarios = 691;

// --- Frequency editor (own numbers) ------------------------------------------------------------
inline constexpr int kTituloFrecuencia = 700;
inline constexpr int kCapRepetir = 701;
inline constexpr int kUnidadDias = 702;  // list entries of kCapRepetir, in code-unit order
inline constexpr int kUnidadSemanas = 703;
inline constexpr int kUnidadMeses = 704;
inline constexpr int kUnidadAnios = 705;
inline constexpr int kUnidadDiaDeLaSemana = 706;
inline constexpr int kUnidadUltimoDiaHabil = 707;
inline constexpr int kCapCada = 708;
inline constexpr int kCapOrdinal = 709;
inline constexpr int kOrdinalPrimer = 710;  // 710-713 first to fourth, then kOrdinalUltimo
inline constexpr int kOrdinalSegundo = 711;
inline constexpr int kOrdinalTercer = 712;
inline constexpr int kOrdinalCuarto = 713;
inline constexpr int kOrdinalUltimo = 714;
inline constexpr int kCapDiaSemana = 715;
inline constexpr int kLunes = 716;  // 716-722 Monday to Sunday
inline constexpr int kMartes = 717;
inline constexpr int kMiercoles = 718;
inline constexpr int kJueves = 719;
inline constexpr int kViernes = 720;
inline constexpr int kSabado = 721;
inline constexpr int kDomingo = 722;
inline constexpr int kCapFinDeSemana = 723;
inline constexpr int kNoMover = 724;
inline constexpr int kDiaHabilSiguiente = 725;
inline constexpr int kDiaHabilAnterior = 726;
inline constexpr int kCapDesde = 727;
inline constexpr int kCapProximos = 728;
inline constexpr int kAyudaCada = 729;

// --- Wizard: who owns an entry (cfTipo "Ti&po:", item data enuClasificacionMF) -------------------
inline constexpr int kClasificacionNormal = 730;
inline constexpr int kClasificacionSistema = 731;

// --- Questions ---------------------------------------------------------------------------------
inline constexpr int kConfirmaGrabarAsiento = 801;
inline constexpr int kConfirmaGrabarComprobante = 802;
inline constexpr int kConfirmaGrabarAviso = 803;

// Save question of the wizard for a movement of type `tipo` (1..3).
constexpr int ConfirmaGrabarDeTipo(int tipo) {
  return 800 + tipo;
}

inline constexpr int kConfirmaEliminarRegistro = 806;
inline constexpr int kConfirmaEnviarPapelera = 807;
inline constexpr int kConfirmaCambiarEstado = 808;
inline constexpr int kContactoPrivado = 810;  // three lines; "[p]" = contact name

// --- Validation messages -----------------------------------------------------------------------
inline constexpr int kCampoNoValido = 812;
inline constexpr int kTipoImporteNumeracion = 813;
inline constexpr int kCuentaDebeYHaber = 814;
inline constexpr int kFxMismaCuenta = 817;
inline constexpr int kFxValorNoValido = 818;
inline constexpr int kFxDiferenciaConOtros = 819;
inline constexpr int kFxRestoEnVariasCuentas = 820;
inline constexpr int kFxReferenciaCruzada = 821;
inline constexpr int kSumatoriaNoCoincide = 822;
inline constexpr int kCuentasImporteCero = 823;
inline constexpr int kFxDiferenciaEImporteEnColumnas = 824;
inline constexpr int kFechaHastaMenor = 825;
inline constexpr int kEditeFrecuencia = 826;
inline constexpr int kUsuariosDuplicados = 828;
inline constexpr int kCuentaYaIngresada = 830;
inline constexpr int kEliminarFilaEditada = 831;
inline constexpr int kIngreseCuenta = 832;
inline constexpr int kIngreseValorDebeHaber = 833;
inline constexpr int kReemplazarFormula = 834;
inline constexpr int kSeleccioneTipoCambio = 835;
inline constexpr int kNotificacionImporteFijo = 836;
inline constexpr int kDiferenciaNotificar = 849;
inline constexpr int kNotificacionAntesDeVencimiento = 854;
inline constexpr int kVinculadoEliminado = 862;  // second line kVerifiqueAntesDeGrabar
inline constexpr int kMasDeUnAgendado = 863;     // second line kAgendadoVidaPropia
inline constexpr int kSinDerechos = 870;         // second line kConsulteAdministrador
inline constexpr int kNoEliminarVinculado = 871;

// --- Error texts -------------------------------------------------------------------------------
inline constexpr int kContadorTablaFallido = 904;  // error 8000, source "DBFncs"
inline constexpr int kErrorCargarAsistente = 911;
inline constexpr int kErrorInicializarPanel = 948;
inline constexpr int kErrorSetearPanel = 949;
inline constexpr int kErrorValidarPanel = 954;

}  // namespace kivmovfrec::msg
