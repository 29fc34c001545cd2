// SPDX-License-Identifier: Apache-2.0
#include "tests/Scenes/SceneWords.h"

namespace mossbank::test {

/// Ordinary Turkish words, with every letter that only Turkish has, between spaces.
const char16_t* const kTurkishWords =
    u"açık açıklama adım adres ağaç ağır ağustos akşam alan alışveriş altı anahtar anlam "
    u"anlaşma anne aralık araç aramak araştırma arkadaş artık arşiv aşağı aşk avukat ayakkabı "
    u"aydınlık ayna ayrıntı az bağlantı bahçe bahşiş balık banka barış başarı başka başlangıç "
    u"başlık bayrak bebek beklemek belge beyaz bıçak bilgi bilgisayar bina birçok birlikte "
    u"bisiklet bitki boğaz borç boş boya böcek bölge bölüm bugün buluşma burada bülten büro "
    u"bütçe bütün büyük cadde cam cephe cevap ceviz coğrafya çabuk çağrı çalışma çamaşır çanta "
    u"çarşamba çarşı çay çekiç çevre çiçek çift çizgi çocuk çoğunluk çorba çözüm çünkü dağ "
    u"dakika davranış davet değer değişiklik deniz deprem ders destek devam dışarı dikkat dil "
    u"dilekçe doğru doğum dolap dosya dönüş dört durum duvar duygu düğme düğün dünya düşünce "
    u"düzeltme edebiyat efendi eğitim ekim ekmek ekran elbise elektrik elma emlak endişe "
    u"enerji erik eski eşya etkinlik evrak eylül fabrika fakat fatura fırın fırtına fikir "
    u"filiz fincan fiyat fotoğraf gazete gece geçmiş gelecek gemi genç gerçek gezi gişe gömlek "
    u"gönder görev görüntü görüşme göz gözlük güç güçlü gülümseme gümrük gün güneş günlük "
    u"güvenlik güzel haber hafta haftalık hakkında halı hangi harita hastane hata hava "
    u"hazırlık hedef hesap hızlı hikâye hizmet hukuk ılık ısı ışık ıspanak içecek içerik "
    u"içinde iğne ihtiyaç ikinci ilaç ilçe ilgi iletişim ilişki imza inceleme indirim ipek "
    u"istasyon işaret işlem iyilik izin jeoloji kâğıt kalabalık kalem kampüs kapı kardeş karşı "
    u"kasım kaydet kaynak kazanç kelime keşif kırmızı kış kıyı kızartma kilometre kimlik kişi "
    u"kitap koltuk komşu konuşma koşu köprü köşe köy kuaför kulüp kurul kuruluş kuş kutu küçük "
    u"kültür kütüphane lâle liman lütfen mağaza mahalle makale mavi mayıs mektup mermer mesaj "
    u"mevsim meydan mısır mimar misafir mutfak mutluluk müdür mühendis müşteri müze müzik "
    u"nasıl neden nehir nisan numara nüfus okul onay orman ortalama oğlan öğle öğrenci "
    u"öğretmen ölçü ömür önce öneri önemli örnek özel özet özgürlük paket park parola pazar "
    u"pazartesi pencere perşembe peynir plan portakal proje rapor renk resim rüya rüzgâr saat "
    u"sabah sağlık sahne sanat sandalye satış savaş sayfa sayı sekiz sevgi seyahat sıcak sınav "
    u"sınıf sıra sipariş soğuk sokak sonuç soru söz sözleşme sözlük süre sürüm süt şafak şans "
    u"şapka şarkı şehir şeker şemsiye şifre şimdi şirket şubat şüphe tabak takvim tarih taşıma "
    u"tatil telefon temizlik temmuz tepe tercih toplantı toprak torba tören tuğla turuncu tuz "
    u"tür türkü uçak ucuz uğur ulaşım umut uyarı uygulama uyku uzaktan uzun ücret üçgen ülke "
    u"ümit ünlü üretim ürün üzüm vakıf varış vatandaş vazgeçmek vergi yağmur yakın yalnız "
    u"yanlış yapı yaprak yardım yarın yatırım yavaş yayın yaz yazılım yazıcı yedek yemek yeni "
    u"yeryüzü yeşil yıldız yığın yoğurt yolcu yorum yönetim yük yüksek yürüyüş yüzde zaman "
    u"zarf zeytin zincir ziyaret zor";

} // namespace mossbank::test
