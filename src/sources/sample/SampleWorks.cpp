#include "sources/sample/SampleWorks.h"

#include <array>

namespace tavrion {

namespace {

using enum SampleForces;

constexpr std::array works{
    SampleWork{"Johann Sebastian Bach", "Bach: The Well-Tempered Clavier, Book I", "Baroque",
               keyboard, "Prelude and Fugue in @", 24, 140, 420},
    SampleWork{"Johann Sebastian Bach", "Bach: The Well-Tempered Clavier, Book II", "Baroque",
               keyboard, "Prelude and Fugue in @", 24, 150, 460},
    SampleWork{"Johann Sebastian Bach", "Bach: Goldberg Variations", "Baroque", keyboard,
               "Variation #", 30, 60, 300},
    SampleWork{"Johann Sebastian Bach", "Bach: Two-Part Inventions", "Baroque", keyboard,
               "Invention No. #", 15, 50, 130},
    SampleWork{"Johann Sebastian Bach", "Bach: French Suite No. 5", "Baroque", keyboard,
               "Allemande|Courante|Sarabande|Gavotte|Bourrée|Loure|Gigue", 7, 70, 330},
    SampleWork{"Johann Sebastian Bach", "Bach: Cello Suite No. 1 in G Major", "Baroque", chamber,
               "Prélude|Allemande|Courante|Sarabande|Menuets I and II|Gigue", 6, 100, 300},
    SampleWork{"Johann Sebastian Bach", "Bach: Orchestral Suite No. 2", "Baroque", orchestra,
               "Ouverture|Rondeau|Sarabande|Bourrées I and II|Polonaise|Menuet|Badinerie", 7, 80,
               620},
    SampleWork{"George Frideric Handel", "Handel: Water Music", "Baroque", orchestra,
               "Overture|Adagio e staccato|Andante|Minuet|Air|Bourrée|Hornpipe|Alla Hornpipe|"
               "Rigaudon|Gigue",
               10, 80, 260},
    SampleWork{"Antonio Vivaldi", "Vivaldi: The Four Seasons", "Baroque", orchestra,
               "Spring: Allegro|Spring: Largo|Spring: Allegro pastorale|"
               "Summer: Allegro non molto|Summer: Adagio|Summer: Presto|Autumn: Allegro|"
               "Autumn: Adagio molto|Autumn: Allegro (La caccia)|Winter: Allegro non molto|"
               "Winter: Largo|Winter: Allegro",
               12, 120, 330},
    SampleWork{"Domenico Scarlatti", "Scarlatti: Keyboard Sonatas", "Baroque", keyboard,
               "Sonata in @", 18, 130, 380},
    SampleWork{"François Couperin", "Couperin: Pièces de clavecin", "Baroque", keyboard,
               "Les Barricades mystérieuses|Le Tic-toc-choc|Les Moissonneurs|La Bersan|"
               "Le Moucheron|Les Ombres errantes|Le Carillon de Cythère|La Favorite",
               8, 90, 320},
    SampleWork{"Jean-Philippe Rameau", "Rameau: Nouvelles suites", "Baroque", keyboard,
               "Les Tricotets|L'Indifférente|La Poule|Les Triolets|Les Sauvages|L'Enharmonique|"
               "L'Égyptienne|Gavotte et six doubles",
               8, 110, 480},
    SampleWork{"Barbara Strozzi", "Strozzi: Cantatas", "Baroque", voice,
               "Lagrime mie|L'eraclito amoroso|Tradimento|Fin che tu spiri|Moralità amorosa|"
               "Appresso ai molli argenti",
               6, 160, 560},
    SampleWork{"Henry Purcell", "Purcell: Songs and Airs", "Baroque", voice,
               "Music for a While|If Music Be the Food of Love|Fairest Isle|An Evening Hymn|"
               "Sweeter than Roses|I Attempt from Love's Sickness to Fly|When I Am Laid in Earth",
               7, 100, 290},
    SampleWork{"John Dowland", "Dowland: The First Booke of Songes", "Renaissance", voice,
               "Come Again, Sweet Love Doth Now Invite|Awake, Sweet Love|Come Away|"
               "Can She Excuse My Wrongs|Now, O Now I Needs Must Part|Go Crystal Tears|"
               "If My Complaints Could Passions Move|Away with These Self-Loving Lads",
               8, 120, 310},
    SampleWork{"Hildegard von Bingen", "Hildegard: Symphonia", "Medieval", choir,
               "O vis aeternitatis|O virtus sapientiae|Ave generosa|O viridissima virga|"
               "Caritas abundat|O ignis spiritus|O Euchari|Columba aspexit",
               8, 170, 560},
    SampleWork{"Thomas Tallis", "Tallis: Motets", "Renaissance", choir,
               "If Ye Love Me|O nata lux|Te lucis ante terminum|Salvator mundi|Loquebantur|"
               "In manus tuas|Sancte Deus",
               7, 120, 380},
    SampleWork{"Giovanni Pierluigi da Palestrina", "Palestrina: Missa Papae Marcelli",
               "Renaissance", choir,
               "Kyrie|Gloria|Credo|Sanctus|Benedictus|Agnus Dei I|Agnus Dei II", 7, 150, 600},
    SampleWork{"Joseph Haydn", "Haydn: Symphony No. 94, Surprise", "Classical", orchestra,
               "Adagio – Vivace assai|Andante|Menuetto|Finale: Allegro di molto", 4, 220, 560},
    SampleWork{"Joseph Haydn", "Haydn: String Quartet in C Major, Emperor", "Classical", chamber,
               "Allegro|Poco adagio, cantabile|Menuetto: Allegro|Finale: Presto", 4, 250, 460},
    SampleWork{"Wolfgang Amadeus Mozart", "Mozart: Eine kleine Nachtmusik", "Classical", orchestra,
               "Allegro|Romanze: Andante|Menuetto: Allegretto|Rondo: Allegro", 4, 130, 380},
    SampleWork{"Wolfgang Amadeus Mozart", "Mozart: Symphony No. 40 in G Minor", "Classical",
               orchestra, "Molto allegro|Andante|Menuetto: Allegretto|Allegro assai", 4, 230, 720},
    SampleWork{"Wolfgang Amadeus Mozart", "Mozart: Piano Sonata No. 11 in A Major", "Classical",
               keyboard, "Andante grazioso|Menuetto|Alla turca", 3, 200, 840},
    SampleWork{"Wolfgang Amadeus Mozart", "Mozart: Requiem in D Minor", "Classical", choir,
               "Introitus: Requiem aeternam|Kyrie|Dies irae|Tuba mirum|Rex tremendae|Recordare|"
               "Confutatis|Lacrimosa|Domine Jesu|Hostias|Sanctus|Benedictus|Agnus Dei|"
               "Lux aeterna",
               14, 100, 380},
    SampleWork{"Ludwig van Beethoven", "Beethoven: Piano Sonata No. 14, Moonlight", "Classical",
               keyboard, "Adagio sostenuto|Allegretto|Presto agitato", 3, 120, 480},
    SampleWork{"Ludwig van Beethoven", "Beethoven: Symphony No. 5 in C Minor", "Classical",
               orchestra, "Allegro con brio|Andante con moto|Scherzo: Allegro|Allegro", 4, 300,
               680},
    SampleWork{"Ludwig van Beethoven", "Beethoven: Symphony No. 6, Pastoral", "Classical",
               orchestra,
               "Awakening of Cheerful Feelings|Scene by the Brook|Merry Gathering of Country Folk|"
               "Thunderstorm|Shepherd's Song",
               5, 210, 760},
    SampleWork{"Ludwig van Beethoven", "Beethoven: Bagatelles", "Classical", keyboard,
               "Bagatelle No. #", 11, 40, 260},
    SampleWork{"Franz Schubert", "Schubert: Winterreise", "Romantic", voice,
               "Gute Nacht|Die Wetterfahne|Gefrorne Tränen|Erstarrung|Der Lindenbaum|Wasserflut|"
               "Auf dem Flusse|Rückblick|Irrlicht|Rast|Frühlingstraum|Einsamkeit|Die Post|"
               "Der greise Kopf|Die Krähe|Letzte Hoffnung|Im Dorfe|Der stürmische Morgen|"
               "Täuschung|Der Wegweiser|Das Wirtshaus|Mut|Die Nebensonnen|Der Leiermann",
               24, 60, 340},
    SampleWork{"Franz Schubert", "Schubert: Die schöne Müllerin", "Romantic", voice,
               "Das Wandern|Wohin?|Halt!|Danksagung an den Bach|Am Feierabend|Der Neugierige|"
               "Ungeduld|Morgengruß|Des Müllers Blumen|Tränenregen|Mein!|Pause|"
               "Mit dem grünen Lautenbande|Der Jäger|Eifersucht und Stolz|Die liebe Farbe|"
               "Die böse Farbe|Trockne Blumen|Der Müller und der Bach|Des Baches Wiegenlied",
               20, 80, 330},
    SampleWork{"Franz Schubert", "Schubert: Impromptus", "Romantic", keyboard, "Impromptu No. #", 8,
               260, 660},
    SampleWork{"Felix Mendelssohn", "Mendelssohn: Songs Without Words", "Romantic", keyboard,
               "Song Without Words No. #", 24, 80, 260},
    SampleWork{"Fanny Hensel", "Hensel: Das Jahr", "Romantic", keyboard,
               "January|February|March|April|May|June|July|August|September|October|November|"
               "December|Postlude",
               13, 130, 400},
    SampleWork{"Frédéric Chopin", "Chopin: Nocturnes", "Romantic", keyboard, "Nocturne No. #", 21,
               180, 420},
    SampleWork{"Frédéric Chopin", "Chopin: 24 Preludes", "Romantic", keyboard, "Prelude No. #", 24,
               32, 330},
    SampleWork{"Frédéric Chopin", "Chopin: Études", "Romantic", keyboard, "Étude No. #", 24, 70,
               280},
    SampleWork{"Frédéric Chopin", "Chopin: Mazurkas", "Romantic", keyboard, "Mazurka No. #", 20, 70,
               280},
    SampleWork{"Robert Schumann", "Schumann: Scenes from Childhood", "Romantic", keyboard,
               "Of Foreign Lands and Peoples|A Curious Story|Blind Man's Buff|Pleading Child|"
               "Happy Enough|An Important Event|Dreaming|At the Fireside|"
               "Knight of the Hobby Horse|Almost Too Serious|Frightening|Child Falling Asleep|"
               "The Poet Speaks",
               13, 32, 180},
    SampleWork{
        "Robert Schumann", "Dichterliebe", "Romantic", voice,
        "Im wunderschönen Monat Mai|Aus meinen Tränen sprießen|"
        "Die Rose, die Lilie, die Taube|Wenn ich in deine Augen seh'|"
        "Ich will meine Seele tauchen|Im Rhein, im heiligen Strome|Ich grolle nicht|"
        "Und wüßten's die Blumen|Das ist ein Flöten und Geigen|Hör' ich das Liedchen klingen|"
        "Ein Jüngling liebt ein Mädchen|Am leuchtenden Sommermorgen|"
        "Ich hab' im Traum geweinet|Allnächtlich im Traume|Aus alten Märchen|"
        "Die alten, bösen Lieder",
        16, 38, 290},
    SampleWork{"Clara Schumann", "Schumann: Soirées musicales", "Romantic", keyboard,
               "Toccatina|Notturno|Mazurka in G Minor|Ballade|Mazurka in G Major|Polonaise", 6, 120,
               380},
    SampleWork{"Franz Liszt", "Liszt: Consolations", "Romantic", keyboard, "Consolation No. #", 6,
               80, 290},
    SampleWork{"Johannes Brahms", "Brahms: Hungarian Dances", "Romantic", orchestra,
               "Hungarian Dance No. #", 21, 90, 310},
    SampleWork{"Johannes Brahms", "Brahms: Intermezzi", "Romantic", keyboard, "Intermezzo No. #",
               10, 150, 420},
    SampleWork{"Johannes Brahms", "Brahms: Clarinet Quintet in B Minor", "Romantic", chamber,
               "Allegro|Adagio|Andantino|Con moto", 4, 270, 780},
    SampleWork{"Antonín Dvořák", "Dvořák: Slavonic Dances", "Romantic", orchestra,
               "Slavonic Dance No. #", 16, 200, 420},
    SampleWork{"Antonín Dvořák", "Dvořák: Symphony No. 9, From the New World", "Romantic",
               orchestra, "Adagio – Allegro molto|Largo|Scherzo: Molto vivace|Allegro con fuoco", 4,
               440, 760},
    SampleWork{"Bedřich Smetana", "Smetana: Má vlast", "Romantic", orchestra,
               "Vyšehrad|Vltava|Šárka|From Bohemia's Woods and Fields|Tábor|Blaník", 6, 560, 900},
    SampleWork{"Edvard Grieg", "Grieg: Peer Gynt", "Romantic", orchestra,
               "Morning Mood|The Death of Åse|Anitra's Dance|In the Hall of the Mountain King|"
               "The Abduction of the Bride|Arabian Dance|Peer Gynt's Homecoming|Solveig's Song",
               8, 140, 330},
    SampleWork{"Edvard Grieg", "Grieg: Lyric Pieces", "Romantic", keyboard,
               "Arietta|Waltz|Watchman's Song|Elves' Dance|Butterfly|Solitary Traveller|"
               "Little Bird|To Spring|March of the Trolls|Notturno|Wedding Day at Troldhaugen|"
               "Remembrances",
               12, 50, 370},
    SampleWork{"Pyotr Ilyich Tchaikovsky", "Tchaikovsky: The Nutcracker Suite", "Romantic",
               orchestra,
               "Miniature Overture|March|Dance of the Sugar Plum Fairy|Trepak|Arabian Dance|"
               "Chinese Dance|Dance of the Reed Flutes|Waltz of the Flowers",
               8, 65, 420},
    SampleWork{"Pyotr Ilyich Tchaikovsky", "Tchaikovsky: The Seasons", "Romantic", keyboard,
               "January: At the Fireside|February: Carnival|March: Song of the Lark|"
               "April: Snowdrop|May: Starlit Nights|June: Barcarolle|July: Song of the Reapers|"
               "August: Harvest|September: The Hunt|October: Autumn Song|November: Troika|"
               "December: Christmas",
               12, 100, 340},
    SampleWork{"Modest Mussorgsky", "Mussorgsky: Pictures at an Exhibition", "Romantic", keyboard,
               "Promenade|Gnomus|The Old Castle|Tuileries|Bydło|Ballet of the Unhatched Chicks|"
               "Limoges|Catacombs|The Hut on Fowl's Legs|The Great Gate of Kiev",
               10, 60, 330},
    SampleWork{"Camille Saint-Saëns", "Saint-Saëns: The Carnival of the Animals", "Romantic",
               chamber,
               "Royal March of the Lion|Hens and Roosters|Wild Asses|Tortoises|The Elephant|"
               "Kangaroos|Aquarium|Characters with Long Ears|The Cuckoo|Aviary|Pianists|Fossils|"
               "The Swan|Finale",
               14, 40, 210},
    SampleWork{"Gabriel Fauré", "Fauré: Requiem", "Romantic", choir,
               "Introït et Kyrie|Offertoire|Sanctus|Pie Jesu|Agnus Dei|Libera me|In Paradisum", 7,
               190, 520},
    SampleWork{"Cécile Chaminade", "Chaminade: Pièces humoristiques", "Romantic", keyboard,
               "Réveil|Sous bois|Inquiétude|Autrefois|Consolation|Norvégienne", 6, 120, 330},
    SampleWork{"Amy Beach", "Beach: Sketches", "Romantic", keyboard,
               "In Autumn|Phantoms|Dreaming|Fireflies", 4, 110, 300},
    SampleWork{"Erik Satie", "Satie: Gymnopédies and Gnossiennes", "Impressionist", keyboard,
               "Gymnopédie No. 1|Gymnopédie No. 2|Gymnopédie No. 3|Gnossienne No. 1|"
               "Gnossienne No. 2|Gnossienne No. 3|Gnossienne No. 4|Gnossienne No. 5|"
               "Gnossienne No. 6|Je te veux",
               10, 100, 320},
    SampleWork{"Claude Debussy", "Debussy: Suite bergamasque", "Impressionist", keyboard,
               "Prélude|Menuet|Clair de lune|Passepied", 4, 210, 330},
    SampleWork{"Claude Debussy", "Debussy: Children's Corner", "Impressionist", keyboard,
               "Doctor Gradus ad Parnassum|Jimbo's Lullaby|Serenade for the Doll|"
               "The Snow Is Dancing|The Little Shepherd|Golliwogg's Cakewalk",
               6, 120, 240},
    SampleWork{"Claude Debussy", "Debussy: Préludes, Book I", "Impressionist", keyboard,
               "Danseuses de Delphes|Voiles|Le vent dans la plaine|Les sons et les parfums|"
               "Les collines d'Anacapri|Des pas sur la neige|Ce qu'a vu le vent d'ouest|"
               "La fille aux cheveux de lin|La sérénade interrompue|La cathédrale engloutie|"
               "La danse de Puck|Minstrels",
               12, 120, 400},
    SampleWork{"Maurice Ravel", "Ravel: Le tombeau de Couperin", "Impressionist", keyboard,
               "Prélude|Fugue|Forlane|Rigaudon|Menuet|Toccata", 6, 180, 340},
    SampleWork{"Maurice Ravel", "Ravel: String Quartet in F Major", "Impressionist", chamber,
               "Allegro moderato|Assez vif|Très lent|Vif et agité", 4, 280, 560},
    SampleWork{"Isaac Albéniz", "Albéniz: Suite española", "Romantic", keyboard,
               "Granada|Cataluña|Sevilla|Cádiz|Asturias|Aragón|Castilla|Cuba", 8, 150, 400},
    SampleWork{"Enrique Granados", "Granados: Danzas españolas", "Romantic", keyboard,
               "Danza española No. #", 12, 130, 400},
    SampleWork{"Gustav Holst", "Holst: The Planets", "Modern", orchestra,
               "Mars, the Bringer of War|Venus, the Bringer of Peace|Mercury, the Winged Messenger|"
               "Jupiter, the Bringer of Jollity|Saturn, the Bringer of Old Age|"
               "Uranus, the Magician|Neptune, the Mystic",
               7, 220, 580},
    SampleWork{"Fernando Sor", "Sor: Studies for Guitar", "Classical", chamber, "Étude No. #", 20,
               60, 250},
    SampleWork{"Francisco Tárrega", "Tárrega: Guitar Pieces", "Romantic", chamber,
               "Recuerdos de la Alhambra|Lágrima|Adelita|Capricho árabe|Gran Vals|"
               "Rosita|Danza mora|Marieta",
               8, 70, 330},
};

constexpr std::array folkTunes{
    SampleTune{"Scarborough Fair", "Traditional"},
    SampleTune{"The Parting Glass", "Traditional"},
    SampleTune{"Shenandoah", "Traditional"},
    SampleTune{"Danny Boy", "Frederic Weatherly"},
    SampleTune{"Greensleeves", "Traditional"},
    SampleTune{"Wild Mountain Thyme", "Traditional"},
    SampleTune{"The Water Is Wide", "Traditional"},
    SampleTune{"Auld Lang Syne", "Robert Burns"},
    SampleTune{"Loch Lomond", "Traditional"},
    SampleTune{"The Skye Boat Song", "Traditional"},
    SampleTune{"Black Is the Colour", "Traditional"},
    SampleTune{"Barbara Allen", "Traditional"},
    SampleTune{"Molly Malone", "Traditional"},
    SampleTune{"Whiskey in the Jar", "Traditional"},
    SampleTune{"The Wild Rover", "Traditional"},
    SampleTune{"Drunken Sailor", "Traditional"},
    SampleTune{"Spanish Ladies", "Traditional"},
    SampleTune{"Leave Her, Johnny", "Traditional"},
    SampleTune{"Haul Away, Joe", "Traditional"},
    SampleTune{"The House of the Rising Sun", "Traditional"},
    SampleTune{"Wayfaring Stranger", "Traditional"},
    SampleTune{"Down by the Riverside", "Traditional"},
    SampleTune{"Amazing Grace", "John Newton"},
    SampleTune{"Red River Valley", "Traditional"},
    SampleTune{"Oh! Susanna", "Stephen Foster"},
    SampleTune{"Hard Times Come Again No More", "Stephen Foster"},
    SampleTune{"La cucaracha", "Traditional"},
    SampleTune{"Bella ciao", "Traditional"},
    SampleTune{"Santa Lucia", "Teodoro Cottrau"},
    SampleTune{"À la claire fontaine", "Traditional"},
    SampleTune{"Sur le pont d'Avignon", "Traditional"},
    SampleTune{"Au clair de la lune", "Traditional"},
    SampleTune{"Die Gedanken sind frei", "Traditional"},
    SampleTune{"Muss i denn", "Traditional"},
    SampleTune{"Wenn ich ein Vöglein wär", "Traditional"},
    SampleTune{"Kein schöner Land", "Anton Wilhelm von Zuccalmaglio"},
    SampleTune{"Es waren zwei Königskinder", "Traditional"},
    SampleTune{"Калинка", "Иван Ларионов"},
    SampleTune{"Очи чёрные", "Traditional"},
    SampleTune{"Эй, ухнем", "Traditional"},
    SampleTune{"さくらさくら", "Traditional"},
    SampleTune{"荒城の月", "瀧廉太郎"},
    SampleTune{"아리랑", "Traditional"},
    SampleTune{"茉莉花", "Traditional"},
    SampleTune{"Üsküdar'a gider iken", "Traditional"},
    SampleTune{"Μήλο μου κόκκινο", "Traditional"},
    SampleTune{"Kde domov můj", "František Škroup"},
    SampleTune{"W moim ogródecku", "Traditional"},
    SampleTune{"Vem kan segla förutan vind", "Traditional"},
    SampleTune{"Ack Värmeland, du sköna", "Traditional"},
    SampleTune{"Å kjøre vatten", "Traditional"},
    SampleTune{"Krummavísur", "Traditional"},
    SampleTune{"Säkkijärven polkka", "Traditional"},
    SampleTune{"The Foggy Dew", "Traditional"},
    SampleTune{"She Moved Through the Fair", "Traditional"},
    SampleTune{"Star of the County Down", "Traditional"},
    SampleTune{"The Banks of Sweet Primroses", "Traditional"},
    SampleTune{"Lord Randall", "Traditional"},
    SampleTune{"Sumer Is Icumen In", "Traditional"},
};

constexpr std::array oldTunes{
    SampleTune{"Maple Leaf Rag", "Scott Joplin"},
    SampleTune{"The Entertainer", "Scott Joplin"},
    SampleTune{"Solace", "Scott Joplin"},
    SampleTune{"Elite Syncopations", "Scott Joplin"},
    SampleTune{"Pine Apple Rag", "Scott Joplin"},
    SampleTune{"Magnetic Rag", "Scott Joplin"},
    SampleTune{"Weeping Willow", "Scott Joplin"},
    SampleTune{"The Easy Winners", "Scott Joplin"},
    SampleTune{"Bethena", "Scott Joplin"},
    SampleTune{"Frog Legs Rag", "James Scott"},
    SampleTune{"Grace and Beauty", "James Scott"},
    SampleTune{"Black and White Rag", "George Botsford"},
    SampleTune{"Dill Pickles", "Charles L. Johnson"},
    SampleTune{"Pickles and Peppers", "Adaline Shepherd"},
    SampleTune{"Tiger Rag", "Traditional"},
    SampleTune{"Twelfth Street Rag", "Euday L. Bowman"},
    SampleTune{"Temptation Rag", "Henry Lodge"},
    SampleTune{"Smoky Mokes", "Abe Holzmann"},
    SampleTune{"At a Georgia Camp Meeting", "Kerry Mills"},
    SampleTune{"Beautiful Dreamer", "Stephen Foster"},
    SampleTune{"Home, Sweet Home", "Henry Bishop"},
    SampleTune{"The Last Rose of Summer", "Traditional"},
    SampleTune{"Funiculì, funiculà", "Luigi Denza"},
    SampleTune{"Ciribiribin", "Alberto Pestalozza"},
    SampleTune{"By the Light of the Silvery Moon", "Gus Edwards"},
    SampleTune{"Let Me Call You Sweetheart", "Leo Friedman"},
    SampleTune{"Down by the Old Mill Stream", "Tell Taylor"},
    SampleTune{"The Stars and Stripes Forever", "John Philip Sousa"},
    SampleTune{"The Liberty Bell", "John Philip Sousa"},
    SampleTune{"El Capitan", "John Philip Sousa"},
    SampleTune{"La Paloma", "Sebastián Iradier"},
    SampleTune{"El choclo", "Ángel Villoldo"},
    SampleTune{"Odeon", "Ernesto Nazareth"},
    SampleTune{"Brejeiro", "Ernesto Nazareth"},
    SampleTune{"Corta-jaca", "Chiquinha Gonzaga"},
    SampleTune{"Over the Waves", "Juventino Rosas"},
    SampleTune{"When the Saints Go Marching In", "Traditional"},
    SampleTune{"Careless Love", "Traditional"},
};

/// The part of a list separated by "|" that has that number.
std::string_view partOf(std::string_view list, std::uint32_t number) {
    for (; number > 0; --number) {
        list.remove_prefix(list.find('|') + 1);
    }
    return list.substr(0, list.find('|'));
}

std::string keyOfNumber(std::uint32_t number) {
    constexpr std::array<std::string_view, 12> tones{
        "C", "C-sharp", "D", "E-flat", "E", "F", "F-sharp", "G", "A-flat", "A", "B-flat", "B"};
    return std::string(tones[(number / 2) % tones.size()]) +
           (number % 2 == 0 ? " Major" : " Minor");
}

}  // namespace

std::span<const SampleWork> sampleWorks() {
    return works;
}

std::string titleOfPiece(const SampleWork& work, std::uint32_t number) {
    std::string title(work.pieces);
    if (const std::size_t place = title.find('#'); place != std::string::npos) {
        return title.replace(place, 1, std::to_string(number + 1));
    }
    if (const std::size_t place = title.find('@'); place != std::string::npos) {
        return title.replace(place, 1, keyOfNumber(number));
    }
    return std::string(partOf(work.pieces, number));
}

std::span<const SampleTune> sampleFolkTunes() {
    return folkTunes;
}

std::span<const SampleTune> sampleOldTunes() {
    return oldTunes;
}

}  // namespace tavrion
