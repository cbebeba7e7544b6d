// SPDX-License-Identifier: GPL-3.0-or-later
// The scanner over the SANE C API.
#include "images/Immagini.h"
#include "images/Scanner.h"

#include <sane/sane.h>
#include <sane/saneopts.h>

#include <cstring>
#include <optional>

namespace images {

static_assert(SANE_STATUS_CANCELLED == 2 && SANE_STATUS_JAMMED == 6 && SANE_STATUS_ACCESS_DENIED == 11,
              "the status table of Scanner::esitoDaStato follows SANE's codes");

namespace {

// An open device; the scan in progress is cancelled and the device closed on every path.
class Maniglia final {
public:
    explicit Maniglia(SANE_Handle h) : m_h(h) {}
    ~Maniglia()
    {
        sane_cancel(m_h);
        sane_close(m_h);
    }
    Maniglia(const Maniglia &) = delete;
    Maniglia &operator=(const Maniglia &) = delete;
    SANE_Handle get() const { return m_h; }

private:
    SANE_Handle m_h;
};

// The number and descriptor of the option called `nome`, when the device has it and it can be set now.
std::optional<std::pair<SANE_Int, const SANE_Option_Descriptor *>> opzione(SANE_Handle h, const QByteArray &nome)
{
    SANE_Int quante = 0;
    if (sane_control_option(h, 0, SANE_ACTION_GET_VALUE, &quante, nullptr) != SANE_STATUS_GOOD)
        return std::nullopt;
    for (SANE_Int i = 1; i < quante; ++i) {
        const SANE_Option_Descriptor *d = sane_get_option_descriptor(h, i);
        if (d && d->name && nome == d->name && SANE_OPTION_IS_ACTIVE(d->cap) && SANE_OPTION_IS_SETTABLE(d->cap))
            return std::make_pair(i, d);
    }
    return std::nullopt;
}

// Sets one option from its text; SANE's status of the attempt.
SANE_Status impostaOpzione(SANE_Handle h, const QString &nome, const QString &valore)
{
    const auto o = opzione(h, nome.toUtf8());
    if (!o)
        return SANE_STATUS_UNSUPPORTED;
    const auto [numero, d] = *o;
    bool ok = true;
    switch (d->type) {
    case SANE_TYPE_STRING: {
        QByteArray testo = valore.toUtf8();
        if (testo.size() >= d->size)
            return SANE_STATUS_INVAL;
        testo.resize(d->size, '\0');
        return sane_control_option(h, numero, SANE_ACTION_SET_VALUE, testo.data(), nullptr);
    }
    case SANE_TYPE_BOOL: {
        const QString v = valore.trimmed().toLower();
        SANE_Bool b = (v == QLatin1String("1") || v == QLatin1String("true") || v == QLatin1String("yes")) ? SANE_TRUE
                                                                                                         : SANE_FALSE;
        return sane_control_option(h, numero, SANE_ACTION_SET_VALUE, &b, nullptr);
    }
    case SANE_TYPE_INT:
    case SANE_TYPE_FIXED: {
        if (d->size != sizeof(SANE_Word))
            return SANE_STATUS_UNSUPPORTED; // a vector of values is not set from one text
        SANE_Word w = d->type == SANE_TYPE_INT ? SANE_Word(valore.toInt(&ok)) : SANE_FIX(valore.toDouble(&ok));
        if (!ok)
            return SANE_STATUS_INVAL;
        return sane_control_option(h, numero, SANE_ACTION_SET_VALUE, &w, nullptr);
    }
    default:
        return SANE_STATUS_UNSUPPORTED;
    }
}

// True when the device lists `valore` among the texts option `nome` may take.
bool offreValore(SANE_Handle h, const char *nome, const char *valore)
{
    const auto o = opzione(h, nome);
    if (!o || o->second->constraint_type != SANE_CONSTRAINT_STRING_LIST)
        return false;
    for (const SANE_String_Const *v = o->second->constraint.string_list; *v; ++v)
        if (std::strcmp(*v, valore) == 0)
            return true;
    return false;
}

// One sample of a line as 0..255. Samples of 16 bits are in the machine's byte order;
// a one-bit grey sample is black when set, a one-bit colour sample is full intensity.
int campione(const uchar *riga, int indice, int profondita, bool grigio)
{
    switch (profondita) {
    case 1: {
        const bool acceso = (riga[indice / 8] >> (7 - indice % 8)) & 1;
        return acceso != grigio ? 255 : 0;
    }
    case 16: {
        quint16 v;
        std::memcpy(&v, riga + 2 * indice, sizeof v);
        return v >> 8;
    }
    default:
        return riga[indice];
    }
}

// Writes one frame's lines into `immagine` (RGB32, already of the page's size).
void scriviFrame(QImage &immagine, const SANE_Parameters &p, const QByteArray &dati)
{
    const int righe = std::min<qsizetype>(immagine.height(), dati.size() / p.bytes_per_line);
    const int larghezza = std::min(immagine.width(), int(p.pixels_per_line));
    const bool grigio = p.format == SANE_FRAME_GRAY;
    for (int y = 0; y < righe; ++y) {
        const auto *riga = reinterpret_cast<const uchar *>(dati.constData()) + qsizetype(y) * p.bytes_per_line;
        auto *px = reinterpret_cast<QRgb *>(immagine.scanLine(y));
        for (int x = 0; x < larghezza; ++x) {
            switch (p.format) {
            case SANE_FRAME_GRAY: {
                const int v = campione(riga, x, p.depth, grigio);
                px[x] = qRgb(v, v, v);
                break;
            }
            case SANE_FRAME_RGB:
                px[x] = qRgb(campione(riga, 3 * x, p.depth, false), campione(riga, 3 * x + 1, p.depth, false),
                             campione(riga, 3 * x + 2, p.depth, false));
                break;
            case SANE_FRAME_RED:
                px[x] = qRgb(campione(riga, x, p.depth, false), qGreen(px[x]), qBlue(px[x]));
                break;
            case SANE_FRAME_GREEN:
                px[x] = qRgb(qRed(px[x]), campione(riga, x, p.depth, false), qBlue(px[x]));
                break;
            default: // SANE_FRAME_BLUE
                px[x] = qRgb(qRed(px[x]), qGreen(px[x]), campione(riga, x, p.depth, false));
                break;
            }
        }
    }
}

// True when a frame's parameters describe something this reader can turn into pixels.
bool parametriValidi(const SANE_Parameters &p)
{
    if (p.format > SANE_FRAME_BLUE || p.pixels_per_line <= 0 || p.bytes_per_line <= 0)
        return false;
    if (p.depth != 1 && p.depth != 8 && p.depth != 16)
        return false;
    const qint64 campioni = qint64(p.pixels_per_line) * (p.format == SANE_FRAME_RGB ? 3 : 1);
    return p.bytes_per_line >= (campioni * p.depth + 7) / 8;
}

} // namespace

Scanner::Scanner()
{
    SANE_Int versione = 0;
    m_aperto = sane_init(&versione, nullptr) == SANE_STATUS_GOOD;
}

Scanner::~Scanner()
{
    if (m_aperto)
        sane_exit();
}

bool Scanner::supportato()
{
    return true;
}

QList<Scanner::Dispositivo> Scanner::dispositivi()
{
    QList<Dispositivo> elenco;
    const SANE_Device **trovati = nullptr;
    // Local devices only: looking for network scanners can take many seconds.
    if (!m_aperto || sane_get_devices(&trovati, SANE_TRUE) != SANE_STATUS_GOOD || !trovati)
        return elenco;
    for (const SANE_Device **d = trovati; *d; ++d)
        elenco << Dispositivo{QString::fromUtf8((*d)->name),
                              QString::fromUtf8((*d)->vendor) + QLatin1Char(' ') + QString::fromUtf8((*d)->model)};
    return elenco;
}

Scanner::Esito Scanner::acquisisci(const QString &dispositivo, QImage &immagine, const QMap<QString, QString> &opzioni)
{
    immagine = QImage();
    if (!m_aperto)
        return Esito::NonPronto;
    SANE_Handle h = nullptr;
    if (SANE_Status stato = sane_open(dispositivo.toUtf8().constData(), &h); stato != SANE_STATUS_GOOD)
        return stato == SANE_STATUS_INVAL ? Esito::NonPronto : esitoDaStato(stato); // INVAL: no such device
    const Maniglia maniglia(h);

    // The mode first: it can change which other options exist.
    const QString modo = QStringLiteral(SANE_NAME_SCAN_MODE);
    if (opzioni.contains(modo)) {
        if (SANE_Status s = impostaOpzione(h, modo, opzioni.value(modo)); s != SANE_STATUS_GOOD)
            return esitoDaStato(s);
    } else if (offreValore(h, SANE_NAME_SCAN_MODE, SANE_VALUE_SCAN_MODE_COLOR)) {
        impostaOpzione(h, modo, QStringLiteral(SANE_VALUE_SCAN_MODE_COLOR));
    }
    for (auto it = opzioni.cbegin(); it != opzioni.cend(); ++it)
        if (it.key() != modo)
            if (SANE_Status s = impostaOpzione(h, it.key(), it.value()); s != SANE_STATUS_GOOD)
                return esitoDaStato(s);

    QImage pagina;
    QByteArray dati;
    QByteArray blocco(64 * 1024, Qt::Uninitialized);
    for (;;) {
        SANE_Status stato = sane_start(h);
        SANE_Parameters p{};
        if (stato == SANE_STATUS_GOOD)
            stato = sane_get_parameters(h, &p);
        if (stato != SANE_STATUS_GOOD)
            return esitoDaStato(stato);
        if (!parametriValidi(p))
            return Esito::Errore;
        // A hand scanner doesn't know its lines: the page is measured by what it sends.
        const qint64 righeMassime = MassimoPixel / p.pixels_per_line;
        if (p.lines > righeMassime)
            return Esito::Errore;
        dati.clear();
        SANE_Int letti = 0;
        while ((stato = sane_read(h, reinterpret_cast<SANE_Byte *>(blocco.data()), SANE_Int(blocco.size()), &letti))
               == SANE_STATUS_GOOD) {
            dati.append(blocco.constData(), letti);
            if (dati.size() / p.bytes_per_line > righeMassime)
                return Esito::Errore;
        }
        if (stato != SANE_STATUS_EOF)
            return esitoDaStato(stato);
        if (pagina.isNull()) {
            const int righe = p.lines >= 0 ? p.lines : int(dati.size() / p.bytes_per_line);
            if (righe <= 0)
                return Esito::Errore;
            pagina = QImage(p.pixels_per_line, righe, QImage::Format_RGB32);
            if (pagina.isNull())
                return Esito::Errore;
            pagina.fill(Qt::black);
        }
        scriviFrame(pagina, p, dati);
        if (p.last_frame)
            break;
    }
    immagine = pagina;
    return Esito::Ok;
}

} // namespace images
