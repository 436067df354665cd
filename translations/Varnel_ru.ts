<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>Поиск примеров</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>Ошибка поиска: запрос вернул пустой объект</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>Ошибка поиска: запрос вернул неверные данные — нет поля «id»</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>Клиент API готов</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>Ошибка хранилища: не найден идентификатор группы — невозможно получить примеры</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>Получение примеров</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>Ошибка получения: запрос вернул пустой объект</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>Ошибка получения: запрос вернул неверные данные — нет поля «projects»</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>Загрузка примера: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>Не удалось загрузить изображение: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>Ошибка сети: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>пример</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Описание</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>Этот файл используется SDK для показа изображения примера на начальном экране.
Он не является частью примера.</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>Объект не является хранилищем, его класс: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>Пример %1 не регистрируется — не удалось найти хранилище с названием: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>Возникла ошибка при создании манифеста примера</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>Клиент API не готов — перезапуск</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>Примеры не загружаются — не удалось найти хранилище с названием: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>Примеры не загружаются — не удалось найти хранилище с адресом: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>Не загружены данные примера: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>Пример %1 не сохраняется — не удалось найти название хранилища с адресом: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>Распаковка примера: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>Загруженный файл не является архивом</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>Возникла ошибка при разархивации</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>Выбор примеров для установки</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Отфильтровать примеры</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Название:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Описание:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Обновлено:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Размещение:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>Добавить или удалить примеры из выбранного хранилища</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>Установленные примеры</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>Хранилище:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>Название выбранного хранилища</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>Список установленных примеров</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>Отфильтровать примеры</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>Добавить примеры из сетевого хранилища</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>Добавить...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>Удалить выбранные установленные примеры</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>Обновления из сети</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>Проверять каждые</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>Время между проверками обновлений и загрузками новых примеров.
Значение 0 отключает автоматические обновления.</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>дн.</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Размещение:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Обновлено:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Состояние:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Каталог:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Ссылка:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>Обновлено</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>Доступно обновление</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>Примеры не найдены</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>Проверьте подключение к сети и повторите попытку позже!</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>Примеры не выбраны</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>Выберите примеры для удаления, нажмите кнопку «Удалить», затем кнопку «Применить», чтобы применить изменения.</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>Открыть размещение...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>Примеры</translation>
    </message>
</context>
</TS>
