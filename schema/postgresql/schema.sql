-- Suite tables (PostgreSQL).
--
-- The same tables, columns and indexes as schema/sqlite/schema.sql, in PostgreSQL's types.
-- Every table the frequent-movements component reads or writes, with the columns it uses, plus
-- what the suite services behind it need (table counters, rights, notice recipients, posted
-- entries and vouchers). Running this script twice changes nothing: every table and index is
-- created only when absent.
--
-- Conventions:
--   * identifiers unquoted: the server folds them to lower case, and the statements the
--     component writes in mixed case ("genMovimientosfrecuentes") find them all the same;
--   * whole numbers INTEGER; amounts, rates and other fractional values DOUBLE PRECISION (so
--     that "1/CMoCompra" divides as a float);
--   * dates TIMESTAMP (without time zone); the SQL date literals 'yyyy-mm-dd hh:nn:ss' of the
--     setting defBDDateFormat compare with them directly;
--   * texts VARCHAR(n) or TEXT;
--   * keys drawn from the table counters (genContadores) are plain INT primary keys, never
--     serial: the database does not number rows.
--   * genRenglonMovFrecuentes has no key of its own, as on SQLite; rows written through a
--     result set are identified by their ctid.

-- ---- Settings, counters, rights --------------------------------------------------------------

-- Suite settings. A name may repeat with different ParTexto (colour schemes 'sis_colores_...'
-- are selected by name and element), so the name alone is not a key.
CREATE TABLE IF NOT EXISTS genParametros (
  ParNombre       VARCHAR(60)  NOT NULL,
  ParTexto        VARCHAR(255),
  ParValor        DOUBLE PRECISION,
  ParDescripcion  VARCHAR(255)
);
CREATE INDEX IF NOT EXISTS ix_genParametros_nombre ON genParametros (ParNombre, ParTexto);

-- Table counters: CntValor is the last key handed out for CntTabla; the next key is CntValor
-- plus one.
CREATE TABLE IF NOT EXISTS genContadores (
  CntTabla  VARCHAR(60) NOT NULL PRIMARY KEY,
  CntValor  INTEGER     NOT NULL
);

-- Users of the suite. Code 0 is the system itself and is never offered to people.
CREATE TABLE IF NOT EXISTS admUsuarios (
  UsuCodigo          INTEGER NOT NULL PRIMARY KEY,
  UsuIdentificacion  VARCHAR(30) NOT NULL,
  UsuNombres         VARCHAR(60),
  UsuApellidos       VARCHAR(60),
  UsuHabilitado      INTEGER NOT NULL DEFAULT 1
);
CREATE INDEX IF NOT EXISTS ix_admUsuarios_identificacion ON admUsuarios (UsuIdentificacion);

-- Permission letters of a user on an option in a company ("A" create, "M" modify, "E" send to
-- the bin, "e" delete from the bin, "T"/"Q" see the company among "all my companies").
CREATE TABLE IF NOT EXISTS admDerechos (
  DerUsuario  INTEGER     NOT NULL,
  DerEmpresa  INTEGER     NOT NULL,
  DerOpcion   VARCHAR(40) NOT NULL,
  DerLetras   VARCHAR(20) NOT NULL DEFAULT '',
  PRIMARY KEY (DerUsuario, DerEmpresa, DerOpcion)
);

-- ---- Companies and their charts --------------------------------------------------------------

-- EmpPrms holds "|"-separated items; "lib:" gives the default journal and "tcom:" the default
-- voucher type. (EmpValoresUsuarioYAuroriza is spelt as the suite spells it.)
CREATE TABLE IF NOT EXISTS cceEmpresas (
  EmpID                       INTEGER NOT NULL PRIMARY KEY,
  EmpNombre                   VARCHAR(100) NOT NULL,
  EmpMostrarCodigoCta         INTEGER,
  EmpMonedaContabilidad       INTEGER,
  EmpValoresUsuarioYAuroriza  VARCHAR(60),
  EmpTipoTCComprobantes       INTEGER,
  EmpClase                    INTEGER,
  EmpPrms                     VARCHAR(255)
);

-- Chart of accounts. A folder (CueEsCarpeta = 1) only groups accounts and takes no entries.
CREATE TABLE IF NOT EXISTS cceCuentas (
  CueID         INTEGER NOT NULL PRIMARY KEY,
  CueIDEmpresa  INTEGER NOT NULL,
  CueCodigo     VARCHAR(30) NOT NULL,
  CueNombre     VARCHAR(100) NOT NULL,
  CueMoneda     INTEGER,
  CueEsCarpeta  INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IF NOT EXISTS ix_cceCuentas_empresa ON cceCuentas (CueIDEmpresa, CueNombre);

-- Projects and departments (cost centres); lines refer to them by code.
CREATE TABLE IF NOT EXISTS cceProyectos (
  ProCodigo       INTEGER NOT NULL PRIMARY KEY,
  ProIDEmpresa    INTEGER,
  ProAbreviacion  VARCHAR(20),
  ProNombre       VARCHAR(100)
);

CREATE TABLE IF NOT EXISTS cceDepartamentos (
  DepCodigo       INTEGER NOT NULL PRIMARY KEY,
  DepIDEmpresa    INTEGER,
  DepAbreviacion  VARCHAR(20),
  DepNombre       VARCHAR(100)
);

-- Books (journals). LibDelSistema = 1 marks a book kept by the system, never offered.
CREATE TABLE IF NOT EXISTS genLibros (
  LibCodigo      INTEGER NOT NULL PRIMARY KEY,
  LibNombre      VARCHAR(100) NOT NULL,
  LibDelSistema  INTEGER NOT NULL DEFAULT 0
);

-- Pictures a movement can be associated with.
CREATE TABLE IF NOT EXISTS sisIconos (
  IcoCodigo  INTEGER NOT NULL PRIMARY KEY,
  IcoNombre  VARCHAR(60) NOT NULL
);

-- ---- Currencies and rates --------------------------------------------------------------------

-- MonTipo 1 = currency, 2 = index. MonCotizaEn = the currency this one is quoted in.
-- MonRedondeo / MonFormatoCotizacion are numeric format patterns (NULL = the default pattern).
CREATE TABLE IF NOT EXISTS genMonedas (
  MonID                 INTEGER NOT NULL PRIMARY KEY,
  MonSimbolo            VARCHAR(10) NOT NULL,
  MonNombre             VARCHAR(60) NOT NULL,
  MonTipo               INTEGER NOT NULL DEFAULT 1,
  MonCotizaEn           INTEGER,
  MonRedondeo           VARCHAR(30),
  MonFormatoCotizacion  VARCHAR(30)
);
CREATE INDEX IF NOT EXISTS ix_genMonedas_tipo ON genMonedas (MonTipo, MonCotizaEn);

-- Rate types; TCMIndice = 1 marks the type under which index values are kept.
CREATE TABLE IF NOT EXISTS genTipoCotizacionMoneda (
  TCMCodigo  INTEGER NOT NULL PRIMARY KEY,
  TCMNombre  VARCHAR(60) NOT NULL,
  TCMIndice  INTEGER
);
CREATE INDEX IF NOT EXISTS ix_genTipoCotizacionMoneda_indice ON genTipoCotizacionMoneda (TCMIndice);

-- One rate of CMoMoneda expressed in CMoCotizaEn, of type CMoTipoCotizacion, from CMoFecha on.
CREATE TABLE IF NOT EXISTS genCotizacionesMoneda (
  CMoMoneda          INTEGER  NOT NULL,
  CMoCotizaEn        INTEGER  NOT NULL,
  CMoTipoCotizacion  INTEGER  NOT NULL,
  CMoFecha           TIMESTAMP NOT NULL,
  CMoCompra          DOUBLE PRECISION,
  CMoVenta           DOUBLE PRECISION,
  PRIMARY KEY (CMoMoneda, CMoCotizaEn, CMoTipoCotizacion, CMoFecha)
);

-- ---- Contacts, voucher types -----------------------------------------------------------------

-- Contacts. EntOwner set = a private contact of that user; NULL = public.
CREATE TABLE IF NOT EXISTS genEntes (
  EntID      INTEGER NOT NULL PRIMARY KEY,
  EntNombre  VARCHAR(100) NOT NULL,
  EntCUIT    VARCHAR(20),
  EntOwner   INTEGER
);

CREATE TABLE IF NOT EXISTS sisClasificacionComprobante (
  CCoCodigo         INTEGER NOT NULL PRIMARY KEY,
  CCoNombre         VARCHAR(60) NOT NULL,
  CCoVaAlDebe       INTEGER NOT NULL DEFAULT 0,
  CCoOperaContado   INTEGER NOT NULL DEFAULT 0,
  CCoConQPagaCobra  INTEGER NOT NULL DEFAULT 0
);

CREATE TABLE IF NOT EXISTS cceTipoComprobante (
  TCoCodigo             INTEGER NOT NULL PRIMARY KEY,
  TCoNombre             VARCHAR(60) NOT NULL,
  TCoClasificacion      INTEGER NOT NULL,
  TCoIDEmpresa          INTEGER NOT NULL,
  TCoNumeroObligatorio  INTEGER NOT NULL DEFAULT 0
);
CREATE INDEX IF NOT EXISTS ix_cceTipoComprobante_empresa ON cceTipoComprobante (TCoIDEmpresa);

-- ---- Frequent movements ----------------------------------------------------------------------

-- Schedules. RecFrecuencia is the six-digit frequency code kept as text ("200001"); the dates
-- are timestamps; RecNotificar / RecPostergado are days (NULL = none).
CREATE TABLE IF NOT EXISTS genRecurrencias (
  RecID               INT NOT NULL PRIMARY KEY,
  RecFechaInicio      TIMESTAMP,
  RecFechaProxima     TIMESTAMP,
  RecFrecuencia       VARCHAR(10),
  RecFechaFinal       TIMESTAMP,
  RecNumOcurrencia    INTEGER,
  RecPostergado       DOUBLE PRECISION,
  RecSinVencimiento   INTEGER,
  RecNotificar        DOUBLE PRECISION,
  RecEraNotificacion  TIMESTAMP
);
CREATE INDEX IF NOT EXISTS ix_genRecurrencias_proxima ON genRecurrencias (RecFechaProxima);

-- Headers: entries (1), vouchers (2), notices (3), system entries (4), task lists (5) and
-- task-list items (6, MFrEnte = the list). MFrMovVinculado ties a group of linked movements
-- (the head's MFrID), MFrMVOrden is the place in it.
CREATE TABLE IF NOT EXISTS genMovimientosFrecuentes (
  MFrID               INT NOT NULL PRIMARY KEY,
  MFrEmpresa          INTEGER,
  MFrTipo             INTEGER NOT NULL,
  MFrDelSistema       INTEGER,
  MFrNombre           VARCHAR(255),
  MFrMemo             TEXT,
  MFrEnte             INTEGER,
  MFrModalidad        INTEGER,
  MFrTipoImporte      INTEGER,
  MFrMoneda           INTEGER,
  MFrRecurrencia      INTEGER,
  MFrMovVinculado     INTEGER,
  MFrMVOrden          INTEGER,
  MFrUsuarioAlta      INTEGER,
  MFrUsuarioAutoriza  INTEGER,
  MFrEstado           INTEGER NOT NULL DEFAULT 0,
  MFrFechaEstado      TIMESTAMP,
  MFrVista            INTEGER,
  MFrIcono            INTEGER
);
CREATE INDEX IF NOT EXISTS ix_genMovFrec_empresa ON genMovimientosFrecuentes (MFrEmpresa, MFrTipo, MFrEstado);
CREATE INDEX IF NOT EXISTS ix_genMovFrec_vinculado ON genMovimientosFrecuentes (MFrMovVinculado, MFrMVOrden);
CREATE INDEX IF NOT EXISTS ix_genMovFrec_ente ON genMovimientosFrecuentes (MFrEnte, MFrTipo, MFrEstado);
CREATE INDEX IF NOT EXISTS ix_genMovFrec_recurrencia ON genMovimientosFrecuentes (MFrRecurrencia);
CREATE INDEX IF NOT EXISTS ix_genMovFrec_modalidad ON genMovimientosFrecuentes (MFrEstado, MFrModalidad);

-- Lines of a movement; no key of their own, identified by movement and order. A save deletes
-- and re-inserts all lines of a movement, so (movement, order) is not declared unique.
CREATE TABLE IF NOT EXISTS genRenglonMovFrecuentes (
  RMFMovimiento      INTEGER NOT NULL,
  RMFCuenta          INTEGER,
  RMFIDProyecto      INTEGER,
  RMFIDDepartamento  INTEGER,
  RMFOrden           INTEGER,
  RMFAlDebe          INTEGER,
  RMFFormula         TEXT,
  RMFValor           DOUBLE PRECISION,
  RMFValorMonMov     DOUBLE PRECISION,
  RMFFTipoCambio     INTEGER,
  RMFValorTC         DOUBLE PRECISION,
  RMFDetalle         VARCHAR(255)
);
CREATE INDEX IF NOT EXISTS ix_genRenglonMF_movimiento ON genRenglonMovFrecuentes (RMFMovimiento, RMFOrden);
CREATE INDEX IF NOT EXISTS ix_genRenglonMF_cuenta ON genRenglonMovFrecuentes (RMFCuenta);

-- Users a notice is addressed to (written by the routine that links notices to users).
CREATE TABLE IF NOT EXISTS genAvisosUsuarios (
  AvUAviso    INTEGER NOT NULL,
  AvUUsuario  INTEGER NOT NULL,
  AvUVisto    INTEGER NOT NULL DEFAULT 0,
  PRIMARY KEY (AvUAviso, AvUUsuario)
);

-- ---- Posted documents ------------------------------------------------------------------------

-- Journal entries. AsiEstado 1 = posted (only posted entries count in balances), 0 = draft,
-- 2 = annulled. AsiMovFrecuente = the frequent movement the entry was generated from (0 none).
CREATE TABLE IF NOT EXISTS cceAsientos (
  AsiID               INT NOT NULL PRIMARY KEY,
  AsiEmpresa          INTEGER NOT NULL,
  AsiNumero           INTEGER,
  AsiFecha            TIMESTAMP NOT NULL,
  AsiLibro            INTEGER,
  AsiLeyenda          VARCHAR(255),
  AsiEstado           INTEGER NOT NULL DEFAULT 0,
  AsiMovFrecuente     INTEGER,
  AsiUsuario          INTEGER,
  AsiFechaModificado  TIMESTAMP
);
CREATE INDEX IF NOT EXISTS ix_cceAsientos_empresa ON cceAsientos (AsiEmpresa, AsiFecha);
CREATE INDEX IF NOT EXISTS ix_cceAsientos_modificado ON cceAsientos (AsiFechaModificado);
CREATE INDEX IF NOT EXISTS ix_cceAsientos_movfrec ON cceAsientos (AsiMovFrecuente);

-- Lines of an entry. ACuDebe / ACuHaber in the accounting currency; ACuImporteMC in the
-- account's own currency.
CREATE TABLE IF NOT EXISTS cceAsientoCuenta (
  ACuIDAsiento     INTEGER NOT NULL,
  ACuOrden         INTEGER NOT NULL,
  ACuCuenta        INTEGER NOT NULL,
  ACuProyecto      INTEGER,
  ACuDepartamento  INTEGER,
  ACuImporteMC     DOUBLE PRECISION,
  ACuDebe          DOUBLE PRECISION,
  ACuHaber         DOUBLE PRECISION,
  ACuDetalle       VARCHAR(255),
  PRIMARY KEY (ACuIDAsiento, ACuOrden)
);
CREATE INDEX IF NOT EXISTS ix_cceAsientoCuenta_cuenta ON cceAsientoCuenta (ACuCuenta, ACuIDAsiento);

-- Vouchers. ComMovFrecuente = the frequent movement the voucher was generated from (0 none).
CREATE TABLE IF NOT EXISTS cceComprobantes (
  ComID                 INT NOT NULL PRIMARY KEY,
  ComEmpresa            INTEGER NOT NULL,
  ComTipoComprobante    INTEGER,
  ComNumero             VARCHAR(30),
  ComFecha              TIMESTAMP NOT NULL,
  ComEnte               INTEGER,
  ComMoneda             INTEGER,
  ComDetalle            VARCHAR(255),
  ComEstado             INTEGER NOT NULL DEFAULT 0,
  ComMovFrecuente       INTEGER,
  ComUsuario            INTEGER,
  ComFechaModificacion  TIMESTAMP
);
CREATE INDEX IF NOT EXISTS ix_cceComprobantes_empresa ON cceComprobantes (ComEmpresa, ComFecha);
CREATE INDEX IF NOT EXISTS ix_cceComprobantes_modificacion ON cceComprobantes (ComFechaModificacion);
CREATE INDEX IF NOT EXISTS ix_cceComprobantes_movfrec ON cceComprobantes (ComMovFrecuente);

-- Lines of a voucher. CCuImporteCuenta in the account's currency (CCuMoneda); CCuDebe /
-- CCuHaber in the voucher's currency.
CREATE TABLE IF NOT EXISTS cceComprobanteCuenta (
  CCuIDComprobante   INTEGER NOT NULL,
  CCuOrden           INTEGER NOT NULL,
  CCuIDCuenta        INTEGER NOT NULL,
  CCuIDProyecto      INTEGER,
  CCuIDDepartamento  INTEGER,
  CCuMoneda          INTEGER,
  CCuImporteCuenta   DOUBLE PRECISION,
  CCuDebe            DOUBLE PRECISION,
  CCuHaber           DOUBLE PRECISION,
  CCuTipoCambio      DOUBLE PRECISION,
  PRIMARY KEY (CCuIDComprobante, CCuOrden)
);
CREATE INDEX IF NOT EXISTS ix_cceComprobanteCuenta_cuenta ON cceComprobanteCuenta (CCuIDCuenta);
