#include "tests/support/foreign_kinds.h"

namespace quillrip::test {

std::vector<ForeignKind> foreignKinds()
{
    using namespace std::string_literals;
    const std::string exit = "\x1B%-12345X";
    const auto entered = [&](const std::string& language) {
        return exit + "@PJL ENTER LANGUAGE=" + language + "\r\n" + "\1\2\3\4data"s + exit;
    };
    const std::string zeros(128, '\0');
    const std::string escP = "\x1B@";

    std::vector<ForeignKind> kinds {
        { "PclmPage", "%PDF-1.7\n%PCLm 1.0\n", "PCLm" },
        { "PwgRaster", "RaS2PwgRaster\0"s, "PWG raster" },
        { "CupsRaster1", "RaSt" + zeros, "CUPS raster" },
        { "CupsRaster2", "RaS2" + zeros, "CUPS raster" },
        { "CupsRaster3", "RaS3" + zeros, "CUPS raster" },
        { "CupsRaster1Little", "tSaR" + zeros, "CUPS raster" },
        { "CupsRaster2Little", "2SaR" + zeros, "CUPS raster" },
        { "CupsRaster3Little", "3SaR" + zeros, "CUPS raster" },
        { "UrfRaster", "UNIRAST\0\0\0\0\1"s, "URF raster" },
        { "EscP", escP + "\x1Bx1Dear Sir\r\n", "ESC/P" },
        { "EscPThroughPacketMode", "\0\0\0\x1B\1@EJL 1284.4\n@EJL     \n"s + escP, "ESC/P" },
        { "EscP2Remote", "\x1B(R\x08\0\0REMOTE1"s, "ESC/P2" },
        { "EscP2Graphics", "\x1B(G\1\0\1"s, "ESC/P2" },
        { "EscPInText",
            "Dear Sir,\r\n\x1B"
            "Gbold\x1B"
            "H\r\n\x1B"
            "4slanted\x1B"
            "5\r\n",
            "ESC/P" },
        { "EscPPitch", "\x1BPDear Sir,\r\n", "ESC/P" },
        { "Ejl", "\x1B\1@EJL EN LA=ESC/PAGE\n"s, "EJL" },
        { "EjlLines", "@EJL EN LA=ESC/PAGE\n", "EJL" },
        { "EscPosReceipt", escP + "\x1B"s + "a\1SHOP\n\x1B"s + "a\0Bread  1.20\n\x1D"s + "V\0"s, "ESC/POS" },
        { "EscPosBarcode", "\x1D"s + "h\x50\x1D" + "k\4" + "12345\0"s, "ESC/POS" },
        { "EscPosAligned", "\x1B"s + "a\1SHOP\n\x1D"s + "!\x11SUM 1.20\n"s, "ESC/POS" },
        { "BjRaster", "\x1B[K\2\0\0\x0F\x1B(b"s, "BJ raster" },
        { "Proprinter", "\x1B[K\3\0\1"s, "Proprinter" },
        { "ZjStream", "JZJZ\0\0\0\x34"s, "ZjStream" },
        { "ZjStreamLittle", "ZJZJ\0\0\0\x34"s, "ZjStream" },
        { "Xqx", exit + ",XQX\0\0\0\1"s, "XQX" },
        { "Qpdl", exit + "@PJL ENTER LANGUAGE = QPDL\n\0\6\0\1"s + exit, "QPDL" },
        { "HostRasterLikePcl",
            "\x1B"
            "E\x1B&l0A\x1B*g8W\0\0\0\0\0\0\0\0\x1B*b1234M\x1B*b4W\1\2\3\4"s,
            "host-based raster" },
        { "Lidil", "$\0\x10\0\0\0\0\0\0\0\0\0\0\0\0$"s, "LIDIL" },
        { "LidilSynchronised", "$\1\0\0\7\0\0\0\x08\0\0"s + zeros, "LIDIL" },
        { "DotMatrixHostRaster", "\x1B%-98765X\x1C\x14\3Ai\x10"s, "host-based raster" },
        { "DotMatrixText", "\x18\x1C\x1B%C001\x1B%S0\x1BR\x1B%5\x7F\x1B%5!          \3\x80\x80\x80\xFF\xFF\xC0\xC0\xC0",
            "ESC/P" },
        { "Sixels", "\x1BP0;0;0q\"1;1---!124?", "sixels" },
        { "Impress", "@document(language impress)", "imPRESS" },
        { "Oakt", "OAKT\0\0"s, "OAKT" },
        { "Slx", "\xA5SLX\0"s, "SLX" },
        { "Lips", "\x1B%@", "LIPS" },
        { "LipsControlString", "\x1BP31;300;1J\x1B\\", "LIPS" },
        { "Cpca", "\xCD\xCA\x10"s, "CPCA" },
        { "Xes", "=UDK=! \n", "XES" },
        { "XesLines", "=XES=\n", "XES" },
        { "XesEscapes", "\x1B+X\n\x1Bgw1;240,2966,2016,2554\n3?3~_38?@2~}", "XES" },
        { "Afp", "\x5A\0\x10\xD3\xA8\xA8\0\0\0"s + zeros, "AFP" },
        { "AfpResource", "\x5A\0\x08\xD3\xA8\xC6\0\0\0\x5A\0\x08\xD3"s, "AFP" },
        { "Wmf", "\xD7\xCD\xC6\x9A\0\0"s, "WMF" },
        { "Zip", "PK\3\4\x14\0\0\0\0\0"s + zeros, "ZIP" },
        { "TiffLittle", "II*\0\x08\0\0\0"s, "TIFF" },
        { "TiffBig", "MM\0*\0\0\0\x08"s, "TIFF" },
        { "DocumentImage", "EP*\0\x08\0\0\0"s, "document image" },
        { "Jpeg", "\xFF\xD8\xFF\xE0\0\x10JFIF"s, "JPEG" },
        { "Png", "\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s, "PNG" },
        { "Gif", "GIF89a\1\0\1\0"s, "GIF" },
        { "Bmp", "BM\x46\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s, "BMP" },
        { "WebP", "RIFF\x24\0\0\0WEBPVP8 "s, "WebP" },
        { "Pcx", "\x0A\5\1\1"s + std::string(124, '\0'), "PCX" },
        { "Gzip", "\x1F\x8B\x08\0"s, "gzip" },
        { "Bzip2", "BZh91AY", "bzip2" },
        { "Xz", "\xFD"s + "7zXZ\0\0"s, "xz" },
        { "Zstd", "\x28\xB5\x2F\xFD\x04"s, "zstd" },
        { "Zpl", "^XA^FO50,50^FDHello^FS^XZ", "ZPL" },
        { "ZplGraphic", "~DGR:LOGO.GRF,", "ZPL" },
        { "ZplConfiguration", "CT~~CD,~CC^~CT~", "ZPL" },
        { "Cpcl", "! 0 200 200 210 1\r\n", "CPCL" },
        { "Tspl", "SIZE 40 mm,30 mm\r\nGAP 2 mm,0\r\nCLS\r\nTEXT 10,10,\"3\",0,1,1,\"Hi\"\r\n", "TSPL" },
        { "Dpl", "\2L\rD11\r", "DPL" },
        { "Dvi", "\xF7\2\1\x83"s, "DVI" },
        { "Office", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "office" },
        { "Elf", "\x7F"s + "ELF\2\1\1", "program" },
        { "WindowsProgram", "MZ\x90\0\3"s, "program" },
        { "Flash", "FWS\5", "Flash" },
        { "Html", "<!DOCTYPE html>\n", "HTML" },
        { "HtmlBare", "<html><body>", "HTML" },
        { "Xml", "<?xml version=\"1.0\"?>\n", "XML" },
        { "Rtf", "{\\rtf1\\ansi", "RTF" },
        { "Uuencoded", "begin 644 job.prn\n", "uuencoded" },
        { "BinHex", "(This file must be converted with BinHex 4.0)\n", "BinHex" },
        { "Mail", "MIME-Version: 1.0\n", "mail" },
        { "Utf16", "\xFF\xFEH\0i\0"s, "UTF-16" },
        { "Utf16Big", "\xFE\xFF\0H\0i"s, "UTF-16" },
        { "Utf16WithoutMark", "D\0e\0a\0r\0 \0S\0i\0r\0,\0 \0t\0h\0a\0n\0k\0 \0y\0o\0u\0"s, "UTF-16" },
        { "HexListing",
            "1B 45 1B 26 6C 30 41 1B 26 6C 30 4F 1B 26 6C 36 44 1B 26 6C 30 45 1B 26 6C 36 36 46 1B 28 30 4E\n"
            "48 65 6C 6C 6F\n",
            "hexadecimal" },
        { "AppleSingle", "\0\5\x16\0\0\2\0\0"s, "AppleSingle" },
        { "AppleDouble", "\0\5\x16\7\0\2\0\0"s, "AppleDouble" },
        { "ShadowFile", "gI\0\0\x68\0\0\0"s, ".shd" },
        { "Firmware", exit + "@PJL UPGRADE SIZE=4\n\1\2\3\4"s + exit, "firmware" },
        { "LpdControlFile", "\2lp\n\x02"s + "12 cfA001host\nHhost\nPuser\n\0"s, "control file" },
        { "HttpWithoutJob", "POST /x HTTP/1.1\r\nContent-Type: text/html\r\n\r\n<p>", "HTTP" },
        { "ControlCodes", "\1\2\3\4\5\6\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19 and a little text", "unknown kind" },
        { "UnknownEscapes", "\x1B#\x1B#\x1B#\x1B#\x1B#\1\2\3", "escape sequences" },
    };
    for (const char* language : { "ESCP", "ESCP2", "ESCPR", "EPSON", "IBM", "PROPRINTER", "DIABLO", "ZJS", "SPL",
             "SPLC", "SPL-C", "JSPL", "LAVAFLOW", "HIPERC", "HBPL", "HBPL1", "DDST", "RGDI", "GDI", "XL2HB", "CAPT",
             "PHOTOJPEG", "PCLM", "URF", "PWGRASTER", "TIFF", "JPEG", "BMP", "RPCS", "ART", "LIPS", "UFR2", "XES",
             "CGM", "CALS1", "CALCOMP", "VRASTER", "IPDS", "AFP", "HEXDUMP", "SOMETHING-NEW" })
        kinds.push_back({ std::string("Entered") + std::to_string(kinds.size()), entered(language), language });
    return kinds;
}

} // namespace quillrip::test
