-- Demo company: portable SQL, run as it is on every engine (SQLite and PostgreSQL).
--
-- Deterministic demo data: two companies, a small Argentine-style chart of accounts, currencies
-- and rates, users and rights, posted entries with known balances, and frequent movements of
-- every kind. Loaded by the installer only when company 1 does not exist yet. Dates are ISO
-- text; scheduled movements fall due around November-December 2026.
--
-- ================================ CATALOGUE ==================================================
-- Settings (genParametros): defBDDateCharSQLs = ' (a single quote), defBDDateFormat =
--   yyyy-mm-dd hh:nn:ss, Idioma = 1, sis_Multiusuario = 1, sis_LibroAsientoResumen = 9,
--   defBkColorObligatorio = 12648447, sis_colores_1 / element 'checklist' (colours in
--   ParDescripcion, "|"-separated).
-- Counters (genContadores, CntValor = last key handed out): genMovimientosFrecuentes 100,
--   genRecurrencias 100, cceAsientos 100, cceComprobantes 100, genEntes 100.
-- Companies: 1 Distribuidora del Sur S.A. (accounting currency 1, shows account codes,
--   EmpPrms 'lib:1|tcom:1|iva:21' -> Libro 1, TipoComprobante 1);
--   2 Consultora Andina S.R.L. (currency 1, EmpPrms 'LIB:2|TCOM:12' in capitals -> Libro 2,
--   TipoComprobante 12).
-- Accounts, company 1 (CueID code name): folders 100 '1' Activo, 110 '2' Pasivo, 119 '3'
--   Patrimonio neto, 130 '4' Ingresos, 140 '5' Egresos; 101 Caja, 102 Banco Nación cta. cte.,
--   103 Banco Galicia cuenta en dólares (currency 2), 104 Deudores por ventas, 105 IVA Crédito
--   Fiscal, 111 Proveedores, 112 IVA Débito Fiscal, 113 Sueldos a pagar, 114 Cargas sociales a
--   pagar, 116 IVA saldo a pagar, 117 Préstamo bancario, 120 Capital social, 131 Ventas,
--   132 Alquileres ganados, 141 Sueldos y jornales, 142 Cargas sociales, 143 Alquileres
--   pagados, 144 Diferencias de cambio, 145 Servicios y honorarios, 146 Intereses y
--   actualizaciones.
--   Company 2: folder 200; 201 Caja, 202 Banco Provincia cta. cte., 203 Honorarios ganados,
--   204 Gastos generales, 205 Capital social.
-- Projects: 1 'ROS' Obra Rosario, 2 'COR' Sucursal Córdoba (company 1), 3 'AND' Proyecto Andes
--   (company 2). Departments: 1 'ADM' Administración, 2 'VTA' Ventas, 3 'PRD' Producción.
-- Currencies (MonTipo 1): 1 '$' Peso argentino; 2 'U$S' Dólar estadounidense (quoted in 1);
--   3 'EUR' Euro (quoted in 2: the one-hop case EUR -> USD -> ARS); 4 'R$' Real (quoted in 1,
--   MonRedondeo and MonFormatoCotizacion NULL -> default formats). Index (MonTipo 2): 5 'CER'.
-- Rate types: 1 Oficial (TCMIndice 0), 2 Bancario (TCMIndice NULL), 3 Índices (TCMIndice 1).
-- Rates (genCotizacionesMoneda, currency / quoted in / type):
--   2/1/1 USD in ARS: 2026-08-31 1350, 2026-09-30 1380.50, 2026-10-30 1410.25,
--         2026-11-16 1425.75, 2026-11-30 1440.
--   2/1/2 USD in ARS Bancario: 2026-10-30 1415, 2026-11-30 1446; and stored inversely (1/2/2):
--         2026-11-20 0.0007 (-> 1428.5714, later than the direct 10-30 row, so it wins between
--         11-20 and 11-29), 2026-11-30 0.0008 (same date as the direct 1446: the direct wins).
--   3/2/1 EUR in USD: 2026-09-30 1.1650, 2026-10-30 1.1580, 2026-11-30 1.1725. No EUR in ARS.
--   1/4/1 ARS in BRL, the pair kept ONLY inversely (no 4/1 row): 2026-09-30 0.0040
--         (-> BRL in ARS 250), 2026-11-02 0.0032 (-> 312.5).
--   5/1/3 CER index: 2026-08-31 612.3456, 2026-09-30 625.1234, 2026-10-31 638.9012,
--         2026-11-30 651.
-- Users: 0 sistema (enabled, never offered), 1 admin María García (enabled, every right),
--   2 jperez Juan Pérez (enabled, no rights at all), 3 lrodriguez Laura Rodríguez (DISABLED),
--   4 cfernandez Carlos Fernández (enabled, partial rights).
-- Rights (admDerechos): user 1, companies 1 and 2, options PasajeAsientos, Comprobantes,
--   CheckList, Papelera: 'AMEeTQ'. User 4, company 1: PasajeAsientos 'AM', CheckList 'M',
--   Papelera 'E' (capital E only). User 2: none.
-- Books: 1 Libro Diario General, 2 Diario de Ventas, 3 Diario de Compras, 9 Asientos resumen del
--   sistema (LibDelSistema 1, never offered).
-- Icons: 1 Calendario, 2 Dinero, 3 Alerta, 4 Documento.
-- Voucher classifications: 1 Factura de venta (to debit), 2 Factura de compra, 3 Recibo de cobro
--   (cash, to debit), 4 Orden de pago (cash).
-- Voucher types: 1 Factura A (class 1, company 1, obligatory numbering), 2 Factura de proveedor
--   (class 2, company 1), 3 Recibo (class 3, company 1), 4 Orden de pago (class 4, company 1),
--   12 Factura C (class 1, company 2, obligatory numbering).
-- Contacts: 1 Inmobiliaria Los Álamos S.R.L., 2 Transportes Martínez (PRIVATE, EntOwner 1),
--   3 Estudio Contable Ruiz y Asociados, 4 Supermercado La Estrella S.A.
-- Posted entries (cceAsientos, AsiEstado 1) of company 1: 1 opening 2026-01-02; 2 sale
--   2026-08-31; 3 September payroll 2026-09-30; 4 payroll paid 2026-10-05; 5 office rent
--   2026-10-10 (generated from movement 1); 6 social charges paid 2026-10-10 (from movement 25);
--   7 October payroll 2026-10-31; 8 services bought 2026-11-05. Not posted: 9 draft (AsiEstado
--   0) and 10 annulled (AsiEstado 2), both on Caja / Ventas and never counted. Company 2: 11
--   opening 2026-02-01, 12 fees collected 2026-10-15 (from movement 23).
-- Balances (debit minus credit of posted entries dated on or before):
--   101 Caja 150000 from 2026-01-02.   102 Banco 2500000 from 01-02, 1700000 from 10-05,
--   1050000 from 10-10.   103 Banco dólares 1350000 (1000 in its own currency).
--   104 121000 and 112 -21000 and 131 -100000 from 08-31.   113 -800000 from 09-30, 0 from
--   10-05, -820000 from 10-31.   114 -200000 from 09-30, 0 from 10-10, -205000 from 10-31.
--   141 800000 from 09-30, 1620000 from 10-31.   142 200000 / 405000 likewise.
--   143 450000 from 10-10.   105 10500, 111 -60500, 145 50000 from 11-05.   120 -4000000.
--   Company 2: 201 500000, 205 -500000 from 02-01; 202 300000, 203 -300000 from 10-15.
-- Vouchers: 1 Factura de proveedor from movement 6 (2026-11-01, contact 3), 2 Factura A in
--   dollars (2026-10-20, contact 4). Vouchers do not enter balances.
-- Frequent movements (genMovimientosFrecuentes; company 1 unless noted; sched = recurrence id):
--    1 entry, sched 1 monthly, next 2026-11-10: office rent, 2% more per occurrence ([12:]),
--      difference to the bank; legend with date macros.
--    2 entry, frequent: payroll, gross asked of the user ([11:...]), lines of the same movement
--      ([1:141;0;0]) and a difference line ([10:]).
--    3 entry, sched 2 monthly, next 2026-11-20, last 2026-12-20: VAT settlement from last
--      month's balances ([4:112], [4:105]).
--    4 entry, sched 3 monthly, next 2026-11-30: exchange difference on 1000 dollars
--      ([13:1;2] rate today minus [7:1;2] rate at the end of last month).
--    5 entry, frequent: loan adjusted by the CER index ([6:5] / [22:5]).
--    6 voucher, sched 4 monthly, next 2026-12-01, last 2027-08-01: accountant's fees, contact 3,
--      voucher type 2; fixed amount, VAT from the first line.
--    7 voucher, frequent, in dollars (currency 2), contact 4, type 1: sale from the movement total
--      ([14:]); lines with an exchange-rate type and a fixed rate.
--    8 notice, sched 5 monthly, next 2026-11-20 10:00, notify 3 days, postponed 1 day: tax due
--      date; addressed to users 1 and 4.
--    9 notice, sched 6 once, 2026-12-15 15:30, notify 1 day: meeting; addressed to user 1.
--   10 task list, sched 7 monthly, next 2026-11-30 18:00: month-end closing, user 1; items
--      11 (importance 1, open), 12 (2, done), 13 (4, open, precedes list 15), 14 (5, in the bin).
--   15 task list, sched 8 once, 2026-12-31: year-end closing, no items.
--   28 task list, sched 12 monthly from 2026-08-15, next 2026-12-15 09:00 (occurrence 5), last
--      2027-01-15 (six occurrences), notify 2 days: income-tax advances; items 29 (importance 1,
--      open), 30 (3, done).
--   16 + 17 linked pair (group 16, orders 1 and 2), frequent entries: year-end bonus and its
--      social charges; 17 refers to a line of 16 ([2:16;141;0;0]).
--   18 entry, frequent: services split by project/department ([1:145;1;1]).
--   19 system entry (type 4, MFrDelSistema 1), book 9: closes sales into capital ([5:131]).
--   20 entry in the bin (state 9).
--   21 notice done (state 1), sched 9 once 2026-06-15.
--   22 notice, sched 10 weekly (000007), next 2026-11-13 09:00, modality 2: backup.
--   23 entry of COMPANY 2, frequent: monthly fees.
--   24 voucher, frequent, contact 2 (the private one): freight.
--   25 + 26 linked group 25: 25 entry sched 11 monthly, next 2026-11-10 (social charges paid,
--      [5:114]), 26 frequent entry, order 2, bank fee from the scheduled one ([19:25;114;0;0]).
--   27 system entry (type 4, MFrDelSistema 1), book 9: month-end adjustments using every kind
--      of value: interest on the bank balance at the end of last month updated by the CER
--      index ([4:102], [6:5] / [22:5]), exchange difference on the dollars held (a [query] block times [13:1;2] - [7:1;2]),
--      fees from a [codescript] block ([prmiva]) plus a line reference ([1:146;0;0]), and the
--      bank as the difference line ([10:]). As of 20/11/2026: 21000 + 15500 + 3150 = 39650.
-- Notice recipients (genAvisosUsuarios): 8 -> 1, 4; 9 -> 1; 21 -> 1; 22 -> 1.
-- ==============================================================================================

-- ---- Settings ------------------------------------------------------------------------------
-- Date literals in SQL, language, multi-user flag, system summary book, colours.
INSERT INTO genParametros (ParNombre, ParTexto, ParValor, ParDescripcion) VALUES
  ('defBDDateCharSQLs', '''', NULL, 'Delimitador de fechas en SQL'),
  ('defBDDateFormat', 'yyyy-mm-dd hh:nn:ss', NULL, 'Formato de fechas en SQL'),
  ('Idioma', '1', 1, 'Idioma de los mensajes (1 = español)'),
  ('sis_Multiusuario', '1', 1, 'Instalación multiusuario'),
  ('sis_LibroAsientoResumen', '9', 9, 'Libro de los asientos resumen'),
  ('defBkColorObligatorio', '&H00C0FFFF&', 12648447, 'Color de fondo de los campos obligatorios'),
  ('sis_colores_1', 'checklist', NULL, '16777215|14737632|15794175|32768|8421504');

-- ---- Table counters ------------------------------------------------------------------------
-- Last key handed out per table; every demo key is below these values.
INSERT INTO genContadores (CntTabla, CntValor) VALUES
  ('genMovimientosFrecuentes', 100),
  ('genRecurrencias', 100),
  ('cceAsientos', 100),
  ('cceComprobantes', 100),
  ('genEntes', 100);

-- ---- Companies -----------------------------------------------------------------------------
-- 1: the demo company (default book 1, default voucher type 1; an unknown item "iva:21").
-- 2: a second company, its parameters written in capitals.
INSERT INTO cceEmpresas (EmpID, EmpNombre, EmpMostrarCodigoCta, EmpMonedaContabilidad,
                         EmpValoresUsuarioYAuroriza, EmpTipoTCComprobantes, EmpClase, EmpPrms) VALUES
  (1, 'Distribuidora del Sur S.A.', 1, 1, 'S', 1, 1, 'lib:1|tcom:1|iva:21'),
  (2, 'Consultora Andina S.R.L.', 0, 1, 'N', 1, 2, 'LIB:2|TCOM:12');

-- ---- Currencies and index ------------------------------------------------------------------
-- 1 accounting currency; 2 quoted in 1; 3 quoted in 2 (one hop to reach 1); 4 without formats;
-- 5 an index (MonTipo 2).
INSERT INTO genMonedas (MonID, MonSimbolo, MonNombre, MonTipo, MonCotizaEn, MonRedondeo,
                        MonFormatoCotizacion) VALUES
  (1, '$', 'Peso argentino', 1, NULL, '#,##0.00', '#,##0.000'),
  (2, 'U$S', 'Dólar estadounidense', 1, 1, '#,##0.00', '#,##0.0000'),
  (3, 'EUR', 'Euro', 1, 2, '#,##0.00', '#,##0.0000'),
  (4, 'R$', 'Real', 1, 1, NULL, NULL),
  (5, 'CER', 'Coeficiente de Estabilización de Referencia', 2, 1, '#,##0.0000', '#,##0.0000');

-- ---- Rate types ----------------------------------------------------------------------------
-- 1 and 2 ordinary (2 with TCMIndice NULL), 3 the index type.
INSERT INTO genTipoCotizacionMoneda (TCMCodigo, TCMNombre, TCMIndice) VALUES
  (1, 'Oficial', 0),
  (2, 'Bancario', NULL),
  (3, 'Índices', 1);

-- ---- Rates ---------------------------------------------------------------------------------
-- Dollar in pesos, official, over four months.
INSERT INTO genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, CMoCompra,
                                   CMoVenta) VALUES
  (2, 1, 1, '2026-08-31 00:00:00', 1350.0000, 1390.0000),
  (2, 1, 1, '2026-09-30 00:00:00', 1380.5000, 1420.5000),
  (2, 1, 1, '2026-10-30 00:00:00', 1410.2500, 1450.2500),
  (2, 1, 1, '2026-11-16 00:00:00', 1425.7500, 1465.7500),
  (2, 1, 1, '2026-11-30 00:00:00', 1440.0000, 1480.0000);
-- Dollar in pesos, bank rate: both directions stored (later date wins, equal dates: direct).
INSERT INTO genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, CMoCompra,
                                   CMoVenta) VALUES
  (2, 1, 2, '2026-10-30 00:00:00', 1415.0000, 1455.0000),
  (2, 1, 2, '2026-11-30 00:00:00', 1446.0000, 1486.0000),
  (1, 2, 2, '2026-11-20 00:00:00', 0.0007, 0.0007),
  (1, 2, 2, '2026-11-30 00:00:00', 0.0008, 0.0008);
-- Euro in dollars (no euro-in-pesos rows: reached through the dollar).
INSERT INTO genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, CMoCompra,
                                   CMoVenta) VALUES
  (3, 2, 1, '2026-09-30 00:00:00', 1.1650, 1.1700),
  (3, 2, 1, '2026-10-30 00:00:00', 1.1580, 1.1630),
  (3, 2, 1, '2026-11-30 00:00:00', 1.1725, 1.1775);
-- Pesos in reais: the real-in-pesos pair exists only in this inverse direction.
INSERT INTO genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, CMoCompra,
                                   CMoVenta) VALUES
  (1, 4, 1, '2026-09-30 00:00:00', 0.0040, 0.0040),
  (1, 4, 1, '2026-11-02 00:00:00', 0.0032, 0.0032);
-- CER index values under the index rate type.
INSERT INTO genCotizacionesMoneda (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha, CMoCompra,
                                   CMoVenta) VALUES
  (5, 1, 3, '2026-08-31 00:00:00', 612.3456, 612.3456),
  (5, 1, 3, '2026-09-30 00:00:00', 625.1234, 625.1234),
  (5, 1, 3, '2026-10-31 00:00:00', 638.9012, 638.9012),
  (5, 1, 3, '2026-11-30 00:00:00', 651.0000, 651.0000);

-- ---- Chart of accounts, company 1 ----------------------------------------------------------
-- Folders (CueEsCarpeta 1) group the accounts; 103 is kept in dollars.
INSERT INTO cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueEsCarpeta) VALUES
  (100, 1, '1', 'Activo', 1, 1),
  (101, 1, '1.1.01', 'Caja', 1, 0),
  (102, 1, '1.1.02', 'Banco Nación cuenta corriente', 1, 0),
  (103, 1, '1.1.03', 'Banco Galicia cuenta en dólares', 2, 0),
  (104, 1, '1.1.04', 'Deudores por ventas', 1, 0),
  (105, 1, '1.1.05', 'IVA Crédito Fiscal', 1, 0),
  (110, 1, '2', 'Pasivo', 1, 1),
  (111, 1, '2.1.01', 'Proveedores', 1, 0),
  (112, 1, '2.1.02', 'IVA Débito Fiscal', 1, 0),
  (113, 1, '2.1.03', 'Sueldos a pagar', 1, 0),
  (114, 1, '2.1.04', 'Cargas sociales a pagar', 1, 0),
  (116, 1, '2.1.05', 'IVA saldo a pagar', 1, 0),
  (117, 1, '2.2.01', 'Préstamo bancario', 1, 0),
  (119, 1, '3', 'Patrimonio neto', 1, 1),
  (120, 1, '3.1.01', 'Capital social', 1, 0),
  (130, 1, '4', 'Ingresos', 1, 1),
  (131, 1, '4.1.01', 'Ventas', 1, 0),
  (132, 1, '4.1.02', 'Alquileres ganados', 1, 0),
  (140, 1, '5', 'Egresos', 1, 1),
  (141, 1, '5.1.01', 'Sueldos y jornales', 1, 0),
  (142, 1, '5.1.02', 'Cargas sociales', 1, 0),
  (143, 1, '5.1.03', 'Alquileres pagados', 1, 0),
  (144, 1, '5.1.04', 'Diferencias de cambio', 1, 0),
  (145, 1, '5.1.05', 'Servicios y honorarios', 1, 0),
  (146, 1, '5.1.06', 'Intereses y actualizaciones', 1, 0);

-- ---- Chart of accounts, company 2 ----------------------------------------------------------
INSERT INTO cceCuentas (CueID, CueIDEmpresa, CueCodigo, CueNombre, CueMoneda, CueEsCarpeta) VALUES
  (200, 2, '1', 'Activo', 1, 1),
  (201, 2, '1.1.01', 'Caja', 1, 0),
  (202, 2, '1.1.02', 'Banco Provincia cuenta corriente', 1, 0),
  (203, 2, '4.1.01', 'Honorarios ganados', 1, 0),
  (204, 2, '5.1.01', 'Gastos generales', 1, 0),
  (205, 2, '3.1.01', 'Capital social', 1, 0);

-- ---- Projects and departments --------------------------------------------------------------
INSERT INTO cceProyectos (ProCodigo, ProIDEmpresa, ProAbreviacion, ProNombre) VALUES
  (1, 1, 'ROS', 'Obra Rosario'),
  (2, 1, 'COR', 'Sucursal Córdoba'),
  (3, 2, 'AND', 'Proyecto Andes');

INSERT INTO cceDepartamentos (DepCodigo, DepIDEmpresa, DepAbreviacion, DepNombre) VALUES
  (1, 1, 'ADM', 'Administración'),
  (2, 1, 'VTA', 'Ventas'),
  (3, 1, 'PRD', 'Producción');

-- ---- Users ---------------------------------------------------------------------------------
-- 0 is the system; 3 is disabled; 2 has no rights; 4 has some.
INSERT INTO admUsuarios (UsuCodigo, UsuIdentificacion, UsuNombres, UsuApellidos, UsuHabilitado) VALUES
  (0, 'sistema', 'Usuario', 'del Sistema', 1),
  (1, 'admin', 'María', 'García', 1),
  (2, 'jperez', 'Juan', 'Pérez', 1),
  (3, 'lrodriguez', 'Laura', 'Rodríguez', 0),
  (4, 'cfernandez', 'Carlos', 'Fernández', 1);

-- ---- Rights --------------------------------------------------------------------------------
-- User 1: every letter on every option in both companies. User 4: some letters in company 1,
-- "E" in capitals on the bin. User 2: nothing.
INSERT INTO admDerechos (DerUsuario, DerEmpresa, DerOpcion, DerLetras) VALUES
  (1, 1, 'PasajeAsientos', 'AMEeTQ'),
  (1, 1, 'Comprobantes', 'AMEeTQ'),
  (1, 1, 'CheckList', 'AMEeTQ'),
  (1, 1, 'Papelera', 'AMEeTQ'),
  (1, 2, 'PasajeAsientos', 'AMEeTQ'),
  (1, 2, 'Comprobantes', 'AMEeTQ'),
  (1, 2, 'CheckList', 'AMEeTQ'),
  (1, 2, 'Papelera', 'AMEeTQ'),
  (4, 1, 'PasajeAsientos', 'AM'),
  (4, 1, 'CheckList', 'M'),
  (4, 1, 'Papelera', 'E');

-- ---- Books ---------------------------------------------------------------------------------
-- 9 belongs to the system and is never offered.
INSERT INTO genLibros (LibCodigo, LibNombre, LibDelSistema) VALUES
  (1, 'Libro Diario General', 0),
  (2, 'Diario de Ventas', 0),
  (3, 'Diario de Compras', 0),
  (9, 'Asientos resumen del sistema', 1);

-- ---- Icons ---------------------------------------------------------------------------------
INSERT INTO sisIconos (IcoCodigo, IcoNombre) VALUES
  (1, 'Calendario'),
  (2, 'Dinero'),
  (3, 'Alerta'),
  (4, 'Documento');

-- ---- Voucher classifications and types -----------------------------------------------------
-- Types 1 and 12 have obligatory numbering; 12 belongs to company 2.
INSERT INTO sisClasificacionComprobante (CCoCodigo, CCoNombre, CCoVaAlDebe, CCoOperaContado,
                                         CCoConQPagaCobra) VALUES
  (1, 'Factura de venta', 1, 0, 1),
  (2, 'Factura de compra', 0, 0, 1),
  (3, 'Recibo de cobro', 1, 1, 0),
  (4, 'Orden de pago', 0, 1, 0);

INSERT INTO cceTipoComprobante (TCoCodigo, TCoNombre, TCoClasificacion, TCoIDEmpresa,
                                TCoNumeroObligatorio) VALUES
  (1, 'Factura A', 1, 1, 1),
  (2, 'Factura de proveedor', 2, 1, 0),
  (3, 'Recibo', 3, 1, 0),
  (4, 'Orden de pago', 4, 1, 0),
  (12, 'Factura C', 1, 2, 1);

-- ---- Contacts ------------------------------------------------------------------------------
-- 2 is a private contact of user 1; the others are public.
INSERT INTO genEntes (EntID, EntNombre, EntCUIT, EntOwner) VALUES
  (1, 'Inmobiliaria Los Álamos S.R.L.', '30-71234567-8', NULL),
  (2, 'Transportes Martínez', '20-28765432-1', 1),
  (3, 'Estudio Contable Ruiz y Asociados', '30-70987654-3', NULL),
  (4, 'Supermercado La Estrella S.A.', '30-65432109-7', NULL);

-- ---- Posted entries, company 1 -------------------------------------------------------------
-- Entries 1-8 are posted and give the balances listed above; 9 is a draft and 10 annulled.
INSERT INTO cceAsientos (AsiID, AsiEmpresa, AsiNumero, AsiFecha, AsiLibro, AsiLeyenda, AsiEstado,
                         AsiMovFrecuente, AsiUsuario, AsiFechaModificado) VALUES
  (1, 1, 1, '2026-01-02 00:00:00', 1, 'Asiento de apertura', 1, 0, 1, '2026-01-02 09:00:00'),
  (2, 1, 2, '2026-08-31 00:00:00', 2, 'Venta según factura A 0001-00000871', 1, 0, 1,
   '2026-08-31 11:20:00'),
  (3, 1, 3, '2026-09-30 00:00:00', 1, 'Sueldos de septiembre 2026', 1, 0, 1, '2026-09-30 17:45:00'),
  (4, 1, 4, '2026-10-05 00:00:00', 1, 'Pago de sueldos de septiembre', 1, 0, 1,
   '2026-10-05 10:05:00'),
  (5, 1, 5, '2026-10-10 00:00:00', 1, 'Alquiler de oficina 10/2026', 1, 1, 1, '2026-10-10 08:30:00'),
  (6, 1, 6, '2026-10-10 00:00:00', 1, 'Pago de cargas sociales de septiembre', 1, 25, 1,
   '2026-10-10 08:31:00'),
  (7, 1, 7, '2026-10-31 00:00:00', 1, 'Sueldos de octubre 2026', 1, 0, 1, '2026-10-31 18:00:00'),
  (8, 1, 8, '2026-11-05 00:00:00', 3, 'Servicios según factura 0003-00004521', 1, 0, 1,
   '2026-11-05 12:00:00'),
  (9, 1, 9, '2026-11-10 00:00:00', 2, 'Borrador: venta sin confirmar', 0, 0, 1,
   '2026-11-10 16:00:00'),
  (10, 1, 10, '2026-11-12 00:00:00', 2, 'Venta anulada', 2, 0, 1, '2026-11-12 09:40:00');

INSERT INTO cceAsientoCuenta (ACuIDAsiento, ACuOrden, ACuCuenta, ACuProyecto, ACuDepartamento,
                              ACuImporteMC, ACuDebe, ACuHaber, ACuDetalle) VALUES
  (1, 1, 101, 0, 0, 150000, 150000, 0, NULL),
  (1, 2, 102, 0, 0, 2500000, 2500000, 0, NULL),
  (1, 3, 103, 0, 0, 1000, 1350000, 0, 'U$S 1.000 a 1.350'),
  (1, 4, 120, 0, 0, 4000000, 0, 4000000, NULL),
  (2, 1, 104, 0, 2, 121000, 121000, 0, NULL),
  (2, 2, 131, 0, 2, 100000, 0, 100000, NULL),
  (2, 3, 112, 0, 0, 21000, 0, 21000, NULL),
  (3, 1, 141, 0, 1, 800000, 800000, 0, NULL),
  (3, 2, 142, 0, 1, 200000, 200000, 0, NULL),
  (3, 3, 113, 0, 0, 800000, 0, 800000, NULL),
  (3, 4, 114, 0, 0, 200000, 0, 200000, NULL),
  (4, 1, 113, 0, 0, 800000, 800000, 0, NULL),
  (4, 2, 102, 0, 0, 800000, 0, 800000, NULL),
  (5, 1, 143, 0, 0, 450000, 450000, 0, NULL),
  (5, 2, 102, 0, 0, 450000, 0, 450000, NULL),
  (6, 1, 114, 0, 0, 200000, 200000, 0, NULL),
  (6, 2, 102, 0, 0, 200000, 0, 200000, NULL),
  (7, 1, 141, 0, 1, 820000, 820000, 0, NULL),
  (7, 2, 142, 0, 1, 205000, 205000, 0, NULL),
  (7, 3, 113, 0, 0, 820000, 0, 820000, NULL),
  (7, 4, 114, 0, 0, 205000, 0, 205000, NULL),
  (8, 1, 145, 1, 1, 50000, 50000, 0, NULL),
  (8, 2, 105, 0, 0, 10500, 10500, 0, NULL),
  (8, 3, 111, 0, 0, 60500, 0, 60500, NULL),
  (9, 1, 101, 0, 0, 99999, 99999, 0, NULL),
  (9, 2, 131, 0, 0, 99999, 0, 99999, NULL),
  (10, 1, 101, 0, 0, 5000, 5000, 0, NULL),
  (10, 2, 131, 0, 0, 5000, 0, 5000, NULL);

-- ---- Posted entries, company 2 -------------------------------------------------------------
INSERT INTO cceAsientos (AsiID, AsiEmpresa, AsiNumero, AsiFecha, AsiLibro, AsiLeyenda, AsiEstado,
                         AsiMovFrecuente, AsiUsuario, AsiFechaModificado) VALUES
  (11, 2, 1, '2026-02-01 00:00:00', 1, 'Asiento de apertura', 1, 0, 1, '2026-02-01 09:00:00'),
  (12, 2, 2, '2026-10-15 00:00:00', 2, 'Cobro de honorarios', 1, 23, 1, '2026-10-15 10:00:00');

INSERT INTO cceAsientoCuenta (ACuIDAsiento, ACuOrden, ACuCuenta, ACuProyecto, ACuDepartamento,
                              ACuImporteMC, ACuDebe, ACuHaber, ACuDetalle) VALUES
  (11, 1, 201, 0, 0, 500000, 500000, 0, NULL),
  (11, 2, 205, 0, 0, 500000, 0, 500000, NULL),
  (12, 1, 202, 3, 0, 300000, 300000, 0, NULL),
  (12, 2, 203, 3, 0, 300000, 0, 300000, NULL);

-- ---- Vouchers ------------------------------------------------------------------------------
-- 1 generated from movement 6 (supplier invoice); 2 a sale invoiced in dollars.
INSERT INTO cceComprobantes (ComID, ComEmpresa, ComTipoComprobante, ComNumero, ComFecha, ComEnte,
                             ComMoneda, ComDetalle, ComEstado, ComMovFrecuente, ComUsuario,
                             ComFechaModificacion) VALUES
  (1, 1, 2, '0002-00001234', '2026-11-01 00:00:00', 3, 1, 'Honorarios de octubre', 1, 6, 1,
   '2026-11-01 10:00:00'),
  (2, 1, 1, '0001-00000902', '2026-10-20 00:00:00', 4, 2, 'Servicios de consultoría', 1, 0, 1,
   '2026-10-20 15:30:00');

INSERT INTO cceComprobanteCuenta (CCuIDComprobante, CCuOrden, CCuIDCuenta, CCuIDProyecto,
                                  CCuIDDepartamento, CCuMoneda, CCuImporteCuenta, CCuDebe, CCuHaber,
                                  CCuTipoCambio) VALUES
  (1, 1, 145, 0, 0, 1, 100000, 100000, 0, 1),
  (1, 2, 105, 0, 0, 1, 21000, 21000, 0, 1),
  (1, 3, 111, 0, 0, 1, 121000, 0, 121000, 1),
  (2, 1, 104, 0, 2, 1, 1706402.5, 1210, 0, 1410.25),
  (2, 2, 131, 0, 2, 1, 1410250, 0, 1000, 1410.25),
  (2, 3, 112, 0, 0, 1, 296152.5, 0, 210, 1410.25);

-- ---- Schedules -----------------------------------------------------------------------------
-- One row per scheduled movement (see the catalogue for the owners). Codes: 200001 monthly,
-- 000007 weekly, 000000 once.
INSERT INTO genRecurrencias (RecID, RecFechaInicio, RecFechaProxima, RecFrecuencia, RecFechaFinal,
                             RecNumOcurrencia, RecPostergado, RecSinVencimiento, RecNotificar,
                             RecEraNotificacion) VALUES
  (1, '2026-01-10 00:00:00', '2026-11-10 00:00:00', '200001', NULL, 11, NULL, 1, 5, NULL),
  (2, '2026-01-20 00:00:00', '2026-11-20 00:00:00', '200001', '2026-12-20 00:00:00', 11, NULL, 0,
   NULL, NULL),
  (3, '2026-06-30 00:00:00', '2026-11-30 00:00:00', '200001', NULL, 6, NULL, 1, NULL, NULL),
  (4, '2026-09-01 00:00:00', '2026-12-01 00:00:00', '200001', '2027-08-01 00:00:00', 4, NULL, 0, 2,
   NULL),
  (5, '2026-07-20 10:00:00', '2026-11-20 10:00:00', '200001', NULL, 5, 1, 1, 3,
   '2026-11-17 10:00:00'),
  (6, '2026-12-15 15:30:00', '2026-12-15 15:30:00', '000000', '2026-12-15 15:30:00', 1, NULL, 0, 1,
   NULL),
  (7, '2026-01-31 18:00:00', '2026-11-30 18:00:00', '200001', NULL, 11, NULL, 1, 1, NULL),
  (8, '2026-12-31 00:00:00', '2026-12-31 00:00:00', '000000', '2026-12-31 00:00:00', 1, NULL, 0,
   NULL, NULL),
  (9, '2026-06-15 09:00:00', '2026-06-15 09:00:00', '000000', '2026-06-15 09:00:00', 1, NULL, 0, 1,
   NULL),
  (10, '2026-10-02 09:00:00', '2026-11-13 09:00:00', '000007', NULL, 7, NULL, 1, NULL, NULL),
  (11, '2026-02-10 00:00:00', '2026-11-10 00:00:00', '200001', NULL, 10, NULL, 1, 2, NULL),
  (12, '2026-08-15 00:00:00', '2026-12-15 09:00:00', '200001', '2027-01-15 00:00:00', 5, NULL, 0,
   2, NULL);

-- ---- Frequent movements: entries and vouchers ----------------------------------------------
-- Columns: id, company, type, system, name, memo/legend, contact (or list), modality (book,
-- voucher type, notice modality or importance), amount type (1 estimated, 2 fixed, 3
-- automatic), currency, schedule, link group, link order, created by, authorised by, state,
-- state date, seen, icon.
INSERT INTO genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrDelSistema, MFrNombre,
                                      MFrMemo, MFrEnte, MFrModalidad, MFrTipoImporte, MFrMoneda,
                                      MFrRecurrencia, MFrMovVinculado, MFrMVOrden, MFrUsuarioAlta,
                                      MFrUsuarioAutoriza, MFrEstado, MFrFechaEstado, MFrVista,
                                      MFrIcono) VALUES
  (1, 1, 1, 0, 'Alquiler mensual de oficina', 'Alquiler de oficina &[FFAñoMes]', 0, 1, 3, 1, 1,
   NULL, 0, 1, 1, 0, '2026-10-10 08:30:00', 0, 2),
  (2, 1, 1, 0, 'Liquidación de sueldos', 'Sueldos de &[FMes-1] &[FAño]', 0, 1, 1, 1, NULL, NULL, 0,
   1, 1, 0, '2026-03-01 09:00:00', 0, 2),
  (3, 1, 1, 0, 'Liquidación mensual de IVA', 'Posición de IVA al &[FUltimoDiaMes-1]', 0, 1, 3, 1,
   2, NULL, 0, 1, 1, 0, '2026-10-20 09:00:00', 0, 4),
  (4, 1, 1, 0, 'Diferencia de cambio Banco en dólares', 'Diferencia de cambio &[FFAñoMes]', 0, 1,
   3, 1, 3, NULL, 0, 1, 1, 0, '2026-10-31 09:00:00', 0, 2),
  (5, 1, 1, 0, 'Actualización de préstamo por CER', 'Actualización CER al &[FechaC]', 0, 1, 3, 1,
   NULL, NULL, 0, 1, 1, 0, '2026-05-02 09:00:00', 0, 2),
  (6, 1, 2, 0, 'Honorarios del estudio contable', 'Honorarios de &[FMes-1]', 3, 2, 2, 1, 4, NULL,
   0, 1, 1, 0, '2026-11-01 10:00:00', 0, 4),
  (7, 1, 2, 0, 'Venta de servicios en dólares', 'Servicios de consultoría', 4, 1, 1, 2, NULL, NULL,
   0, 1, 1, 0, '2026-10-20 15:30:00', 0, 2),
  (16, 1, 1, 0, 'Provisión de aguinaldo', 'Provisión SAC &[FFAñoMes]', 0, 1, 2, 1, NULL, 16, 1, 1,
   1, 0, '2026-06-01 09:00:00', 0, 2),
  (17, 1, 1, 0, 'Cargas sociales del aguinaldo', 'Cargas sociales SAC &[FFAñoMes]', 0, 1, 3, 1,
   NULL, 16, 2, 1, 1, 0, '2026-06-01 09:00:00', 0, 2),
  (18, 1, 1, 0, 'Distribución de servicios por sucursal', 'Servicios por sucursal', 0, 1, 3, 1,
   NULL, NULL, 0, 1, 1, 0, '2026-04-01 09:00:00', 0, 0),
  (19, 1, 4, 1, 'Cierre de cuentas de resultado', 'Asiento resumen del sistema', 0, 9, 3, 1, NULL,
   NULL, 0, 0, 0, 0, '2026-01-01 00:00:00', 0, 0),
  (20, 1, 1, 0, 'Asiento de prueba descartado', 'Prueba', 0, 1, 2, 1, NULL, NULL, 0, 1, 1, 9,
   '2026-09-15 12:00:00', 0, 0),
  (23, 2, 1, 0, 'Honorarios mensuales a cobrar', 'Honorarios &[FFAñoMes]', 0, 2, 2, 1, NULL, NULL,
   0, 1, 1, 0, '2026-10-15 10:00:00', 0, 2),
  (24, 1, 2, 0, 'Flete mensual', 'Fletes del mes', 2, 2, 2, 1, NULL, NULL, 0, 1, 1, 0,
   '2026-08-01 09:00:00', 0, 4),
  (25, 1, 1, 0, 'Pago de cargas sociales', 'Cargas sociales de &[FMes-1]', 0, 1, 3, 1, 11, 25, 1,
   1, 1, 0, '2026-10-10 08:31:00', 0, 2),
  (26, 1, 1, 0, 'Comisión bancaria por transferencia', 'Comisión bancaria', 0, 1, 3, 1, NULL, 25,
   2, 1, 1, 0, '2026-10-10 08:31:00', 0, 2),
  (27, 1, 4, 1, 'Ajustes de cierre del mes', 'Ajustes de cierre &[FFAñoMes]', 0, 9, 3, 1, NULL, NULL,
   0, 0, 0, 0, '2026-11-01 09:00:00', 0, 0);

-- ---- Frequent movements: notices -----------------------------------------------------------
-- 8 monthly and postponed, 9 once, 21 already done, 22 weekly in modality 2.
INSERT INTO genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrDelSistema, MFrNombre,
                                      MFrMemo, MFrEnte, MFrModalidad, MFrTipoImporte, MFrMoneda,
                                      MFrRecurrencia, MFrMovVinculado, MFrMVOrden, MFrUsuarioAlta,
                                      MFrUsuarioAutoriza, MFrEstado, MFrFechaEstado, MFrVista,
                                      MFrIcono) VALUES
  (8, 1, 3, 0, 'Vencimiento de monotributo', 'Pagar la cuota mensual del monotributo.', 0, 1, 0,
   0, 5, NULL, 0, 1, 0, 0, '2026-10-20 10:00:00', 0, 3),
  (9, 1, 3, 0, 'Reunión con el estudio contable', 'Revisar el cierre del ejercicio con el estudio.',
   0, 1, 0, 0, 6, NULL, 0, 1, 0, 0, '2026-11-01 09:00:00', 0, 1),
  (21, 1, 3, 0, 'Renovar seguro del rodado', 'La póliza vence a mediados de junio.', 0, 1, 0, 0,
   9, NULL, 0, 1, 0, 1, '2026-06-15 09:30:00', 2, 3),
  (22, 1, 3, 0, 'Copia de seguridad semanal', 'Hacer la copia de seguridad de la base.', 0, 2, 0,
   0, 10, NULL, 0, 1, 0, 0, '2026-11-06 09:00:00', 0, 1);

-- ---- Frequent movements: task lists and items ----------------------------------------------
-- List 10 with items 11-14 (MFrEnte = 10, importance in MFrModalidad, item 13 precedes list 15,
-- item 12 done, item 14 in the bin); list 15 without items; list 28 with items 29 and 30 (30
-- done), ending after its sixth occurrence.
INSERT INTO genMovimientosFrecuentes (MFrID, MFrEmpresa, MFrTipo, MFrDelSistema, MFrNombre,
                                      MFrMemo, MFrEnte, MFrModalidad, MFrTipoImporte, MFrMoneda,
                                      MFrRecurrencia, MFrMovVinculado, MFrMVOrden, MFrUsuarioAlta,
                                      MFrUsuarioAutoriza, MFrEstado, MFrFechaEstado, MFrVista,
                                      MFrIcono) VALUES
  (10, 1, 5, 0, 'Cierre contable mensual', 'Tareas del cierre de cada mes.', 0, 0, 0, 0, 7, NULL,
   0, 1, 0, 0, '2026-10-31 18:30:00', 0, 0),
  (11, 1, 6, 0, 'Conciliar cuentas bancarias', 'Banco Nación y Banco Galicia.', 10, 1, 0, 0, NULL,
   NULL, 0, 1, 0, 0, '2026-10-31 18:30:00', 0, 0),
  (12, 1, 6, 0, 'Controlar libro IVA', 'Compras y ventas del mes.', 10, 2, 0, 0, NULL, NULL, 0, 1,
   0, 1, '2026-11-02 11:00:00', 0, 0),
  (13, 1, 6, 0, 'Emitir balance de sumas y saldos', 'Para el estudio contable.', 10, 4, 0, 0, NULL,
   15, 0, 1, 0, 0, '2026-10-31 18:30:00', 0, 0),
  (14, 1, 6, 0, 'Archivar comprobantes', 'Carpetas del mes anterior.', 10, 5, 0, 0, NULL, NULL, 0,
   1, 0, 9, '2026-11-03 08:00:00', 0, 0),
  (15, 1, 5, 0, 'Cierre de ejercicio', 'Tareas del cierre anual.', 0, 0, 0, 0, 8, NULL, 0, 1, 0, 0,
   '2026-11-01 09:00:00', 0, 0),
  (28, 1, 5, 0, 'Anticipos de ganancias', 'Seis anticipos del período fiscal.', 0, 0, 0, 0, 12,
   NULL, 0, 1, 0, 0, '2026-11-15 09:00:00', 0, 0),
  (29, 1, 6, 0, 'Calcular el anticipo', 'Según la declaración jurada anterior.', 28, 1, 0, 0, NULL,
   NULL, 0, 1, 0, 0, '2026-11-15 09:00:00', 0, 0),
  (30, 1, 6, 0, 'Pedir fondos a tesorería', 'Con dos días de anticipación.', 28, 3, 0, 0, NULL,
   NULL, 0, 1, 0, 1, '2026-12-10 12:00:00', 0, 0);

-- ---- Lines of the movements ----------------------------------------------------------------
-- Formulas in stored form "[id:args]": 1 line of this movement (account;project;department),
-- 2/19 line of another entry (movement;account;project;department), 4 balance at the end of
-- last month, 5 balance today, 6/22 index today / end of last month, 7/13 rate at the end of
-- last month / today (type;currency), 10 difference, 11 asked of the user, 12 occurrences,
-- 14 movement total.
INSERT INTO genRenglonMovFrecuentes (RMFMovimiento, RMFCuenta, RMFIDProyecto, RMFIDDepartamento,
                                     RMFOrden, RMFAlDebe, RMFFormula, RMFValor, RMFValorMonMov,
                                     RMFFTipoCambio, RMFValorTC, RMFDetalle) VALUES
  (1, 143, 0, 0, 1, 1, '450000*(1+0.02*([12:]-1))', 0, 0, NULL, NULL, 'Alquiler con ajuste'),
  (1, 102, 0, 0, 2, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (2, 141, 0, 1, 1, 1, '[11:Sueldos brutos del mes]', 0, 0, NULL, NULL, NULL),
  (2, 142, 0, 1, 2, 1, '[1:141;0;1]*0.24', 0, 0, NULL, NULL, 'Contribuciones patronales'),
  (2, 113, 0, 0, 3, 0, '[1:141;0;1]*0.83', 0, 0, NULL, NULL, 'Neto a pagar'),
  (2, 114, 0, 0, 4, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (3, 112, 0, 0, 1, 1, '[4:112]*-1', 0, 0, NULL, NULL, NULL),
  (3, 105, 0, 0, 2, 0, '[4:105]', 0, 0, NULL, NULL, NULL),
  (3, 116, 0, 0, 3, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (4, 103, 0, 0, 1, 1, '1000*([13:1;2]-[7:1;2])', 0, 0, NULL, NULL, 'U$S 1.000 revaluados'),
  (4, 144, 0, 0, 2, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (5, 146, 0, 0, 1, 1, '2000000*([6:5]/[22:5]-1)', 0, 0, NULL, NULL, NULL),
  (5, 117, 0, 0, 2, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (6, 145, 0, 0, 1, 1, NULL, 100000, 100000, NULL, NULL, 'Honorarios mensuales'),
  (6, 105, 0, 0, 2, 1, '[1:145;0;0]*0.21', 21000, 21000, NULL, NULL, NULL),
  (6, 111, 0, 0, 3, 0, '[10:]', 121000, 121000, NULL, NULL, NULL),
  (7, 104, 0, 2, 1, 1, '[14:]', 0, 0, 1, NULL, NULL),
  (7, 131, 0, 2, 2, 0, '[1:104;0;2]/1.21', 0, 0, NULL, 1425.75, NULL),
  (7, 112, 0, 0, 3, 0, '[1:104;0;2]-[1:131;0;2]', 0, 0, NULL, NULL, NULL),
  (16, 141, 0, 0, 1, 1, NULL, 400000, 400000, NULL, NULL, 'Medio aguinaldo'),
  (16, 113, 0, 0, 2, 0, '[10:]', 400000, 400000, NULL, NULL, NULL),
  (17, 142, 0, 0, 1, 1, '[2:16;141;0;0]*0.24', 96000, 96000, NULL, NULL, NULL),
  (17, 114, 0, 0, 2, 0, '[10:]', 96000, 96000, NULL, NULL, NULL),
  (18, 145, 1, 1, 1, 1, NULL, 30000, 30000, NULL, NULL, 'Obra Rosario'),
  (18, 145, 2, 2, 2, 1, '[1:145;1;1]*0.5', 15000, 15000, NULL, NULL, 'Sucursal Córdoba'),
  (18, 102, 0, 0, 3, 0, '[10:]', 45000, 45000, NULL, NULL, NULL),
  (19, 131, 0, 0, 1, 1, '[5:131]*-1', 0, 0, NULL, NULL, NULL),
  (19, 120, 0, 0, 2, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (20, 101, 0, 0, 1, 1, NULL, 1000, 1000, NULL, NULL, NULL),
  (20, 131, 0, 0, 2, 0, NULL, 1000, 1000, NULL, NULL, NULL),
  (23, 202, 3, 0, 1, 1, NULL, 300000, 300000, NULL, NULL, NULL),
  (23, 203, 3, 0, 2, 0, '[10:]', 300000, 300000, NULL, NULL, NULL),
  (24, 145, 0, 0, 1, 1, NULL, 80000, 80000, NULL, NULL, 'Fletes'),
  (24, 111, 0, 0, 2, 0, '[10:]', 80000, 80000, NULL, NULL, NULL),
  (25, 114, 0, 0, 1, 1, '[5:114]*-1', 0, 0, NULL, NULL, NULL),
  (25, 102, 0, 0, 2, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (26, 145, 0, 0, 1, 1, '[19:25;114;0;0]*0.001', 0, 0, NULL, NULL, 'Comisión 0,1 %'),
  (26, 102, 0, 0, 2, 0, '[10:]', 0, 0, NULL, NULL, NULL),
  (27, 146, 0, 0, 1, 1, '[4:102]*0.02*[6:5]/[22:5]', 0, 0, NULL, NULL, 'Interés ajustado por CER'),
  (27, 144, 0, 0, 2, 1, '[query]Select Sum(ACuImporteMC) From cceAsientoCuenta, cceAsientos Where ACuIDAsiento = AsiID And AsiEstado = 1 And ACuCuenta = 103 And AsiEmpresa = [pEmp][/query]*([13:1;2]-[7:1;2])',
   0, 0, NULL, NULL, 'Diferencia de cambio de los dólares'),
  (27, 145, 0, 0, 3, 1, '[codescript]Round([prmiva] * 50, 2)[/codescript]+[1:146;0;0]*0.1', 0, 0,
   NULL, NULL, 'Honorarios'),
  (27, 102, 0, 0, 4, 0, '[10:]', 0, 0, NULL, NULL, NULL);

-- ---- Notice recipients ---------------------------------------------------------------------
INSERT INTO genAvisosUsuarios (AvUAviso, AvUUsuario, AvUVisto) VALUES
  (8, 1, 0),
  (8, 4, 0),
  (9, 1, 0),
  (21, 1, 1),
  (22, 1, 0);
