<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="uk">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Пошук прикладів</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Помилка пошуку: запит повернув порожній об&apos;єкт</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Помилка пошуку: запит повернув неправильні дані - немає поля &quot;id&quot;</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Клієнт API готовий</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Помилка сховища: ідентифікатор групи не знайдено - неможливо отримати приклади</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Отримання прикладів</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Помилка отримання: запит повернув порожній об&apos;єкт</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Помилка отримання: запит повернув неправильні дані - немає поля &quot;projects&quot;</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Завантаження прикладу: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Не вдалось завантажити зображення: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Помилка мережі: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>приклад</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Опис</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Цей файл використовується SDK для показу зображення прикладу на екрані привітання.
Він не є частиною прикладу.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Об&apos;єкт не є сховищем, його клас: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Приклад %1 не реєструється - не вдалось знайти сховище з назвою: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Сталась помилка під час створення маніфесту прикладу</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Клієнт API не готовий - перезапуск</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Приклади не завантажуються - не вдалось знайти сховище з назвою: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Приклади не завантажуються - не вдалось знайти сховище з адресою: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Не завантажено дані прикладу: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Приклад %1 не зберігається - не вдалось знайти назву сховища з адресою: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Розпаковування прикладу: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Завантажений файл не є архівом</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Сталась помилка під час розпаковування архіву</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Виберіть приклади для встановлення</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Фільтрувати приклади</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Назва:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Опис:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Оновлено:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Розташування:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Додати або видалити приклади з вибраного сховища</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Встановлені приклади</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Сховище:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Назва вибраного сховища</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Список встановлених прикладів</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Фільтрувати приклади</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Додати приклади з мережевого сховища</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Додати...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Видалити вибрані встановлені приклади</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Видалити</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Оновлення з мережі</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Перевіряти кожні</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Час між перевірками оновлень прикладів та завантаженнями нових прикладів.
Значення 0 вимикає автоматичні оновлення.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>дн.</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Розташування:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Оновлено:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Стан:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Тека:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Посилання:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Оновлено</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Доступне оновлення</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Приклади не знайдено</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Перевірте підключення до мережі та спробуйте пізніше!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Приклади не вибрано</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Виберіть приклади для видалення, натисніть кнопку &quot;Видалити&quot;, потім кнопку &quot;Застосувати&quot;, щоб застосувати зміни.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Відкрити розташування...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Приклади</translation>
    </message>
</context>
</TS>
